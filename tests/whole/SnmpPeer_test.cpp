// Object identifiers against those of net-snmp, where its library is installed.

#include <gtest/gtest.h>

#ifdef TQ_HAVE_NET_SNMP

#include <net-snmp/net-snmp-config.h>

// Behind the one that it needs.
#include <net-snmp/net-snmp-includes.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "Random.h"
#include "TqSnmpOid.h"
#include "Values.h"

namespace {

using Peer = std::vector<oid>;

const int identifiers = 100000;

// Numbers that are alike often, and now and then from all of the range.
oid RandomNumber(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return random.Number();
        case 1:
            return random.Number() >> random.Below(32);
        default:
            return random.Below(4);
    }
}

Peer RandomPeer(Random& random) {
    Peer peer(random.Below(8) != 0 ? 1 + random.Below(20) : 1 + random.Below(MAX_OID_LEN));
    for (oid& number : peer) number = RandomNumber(random);
    return peer;
}

// Often one that begins as `other` does, or equals it.
Peer RandomPeer(Random& random, const Peer& other) {
    Peer peer = other;
    switch (random.Below(5)) {
        case 0:
            return RandomPeer(random);
        case 1:
            peer.resize(1 + random.Below(static_cast<unsigned int>(peer.size())));
            break;
        case 2:
            peer[random.Below(static_cast<unsigned int>(peer.size()))] = RandomNumber(random);
            break;
        case 3:
            if (peer.size() < MAX_OID_LEN) peer.push_back(RandomNumber(random));
            break;
        default:
            break;
    }
    return peer;
}

TqSnmpOid OidOf(const Peer& peer) {
    return TqSnmpOid(peer.data(), static_cast<unsigned int>(peer.size()));
}

std::string TextOf(const Peer& peer) {
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT,
                       NETSNMP_OID_OUTPUT_NUMERIC);
    unsigned char* text = nullptr;
    std::size_t size = 0;
    std::size_t length = 0;
    EXPECT_EQ(sprint_realloc_objid(&text, &size, &length, 1, peer.data(), peer.size()), 1);
    const std::string result(reinterpret_cast<const char*>(text), length);
    std::free(text);
    return result;
}

// Stated difference: numbers from 2147483648 on are shown as negative ones, that one as "-0".
std::string WithNegativeNumbers(const Peer& peer) {
    std::string text;
    for (oid number : peer) {
        const bool negative = number >= 0x80000000u;
        const oid shown = negative ? (0x100000000u - number) % 0x80000000u : number;
        text += (negative ? ".-" : ".") + std::to_string(shown);
    }
    return text;
}

bool HasLargeNumbers(const Peer& peer) {
    for (oid number : peer) {
        if (number >= 0x80000000u) return true;
    }
    return false;
}

TEST(SnmpPeer, OrdersAndEqualsTheSame) {
    Random random(1);
    int found[3] = {0, 0, 0};
    for (int i = 0; i < identifiers; ++i) {
        const Peer a = RandomPeer(random);
        const Peer b = RandomPeer(random, a);
        const int expected = snmp_oid_compare(a.data(), a.size(), b.data(), b.size());
        const TqSnmpOid ours = OidOf(a);
        const TqSnmpOid other = OidOf(b);
        ASSERT_EQ(ours.Compare(other), expected) << TextOf(a) << " with " << TextOf(b);
        ASSERT_EQ(other.Compare(ours), -expected) << TextOf(a) << " with " << TextOf(b);
        ASSERT_EQ(ours.Equals(&other), expected == 0) << TextOf(a) << " with " << TextOf(b);
        ++found[expected + 1];
    }
    for (int count : found) EXPECT_GT(count, identifiers / 10);
}

// Stated difference: the texts begin without a dot, and large numbers are negative ones.
TEST(SnmpPeer, ShowsTheSameTexts) {
    Random random(2);
    int same = 0;
    int negative = 0;
    for (int i = 0; i < identifiers; ++i) {
        const Peer peer = RandomPeer(random);
        const std::string ours = "." + TextOf(OidOf(peer));
        ASSERT_EQ(ours, WithNegativeNumbers(peer));
        if (HasLargeNumbers(peer)) {
            ++negative;
        } else {
            ASSERT_EQ(ours, TextOf(peer));
            ++same;
        }
    }
    EXPECT_GT(same, identifiers / 10);
    EXPECT_GT(negative, identifiers / 10);
}

TEST(SnmpPeer, ParsesTheTextsOfThePeer) {
    Random random(3);
    for (int i = 0; i < identifiers; ++i) {
        const Peer peer = RandomPeer(random);
        const TqSnmpOid expected = OidOf(peer);
        const TqSnmpOid parsed(TextOf(peer).c_str() + 1);
        ASSERT_TRUE(parsed.Equals(&expected)) << TextOf(peer);
    }
}

// Stated difference: the first number is left out of account.
TEST(SnmpPeer, FindsTheSameSubtrees) {
    Random random(4);
    int inside = 0;
    for (int i = 0; i < identifiers; ++i) {
        const Peer table = RandomPeer(random);
        Peer row = RandomPeer(random, table);
        row[0] = table[0];
        const bool expected =
            netsnmp_oid_is_subtree(table.data(), table.size(), row.data(), row.size()) == 0;
        ASSERT_EQ(OidOf(table).SameTable(OidOf(row)), expected)
            << TextOf(table) << " with " << TextOf(row);
        ++row[0];
        ASSERT_EQ(OidOf(table).SameTable(OidOf(row)), expected)
            << TextOf(table) << " with " << TextOf(row);
        inside += expected ? 1 : 0;
    }
    EXPECT_GT(inside, identifiers / 10);
    EXPECT_LT(inside, identifiers / 10 * 9);
}

}  // namespace

#else

TEST(SnmpPeer, AgreesOnOrderAndText) {
    GTEST_SKIP() << "net-snmp's library is not installed for this target";
}

#endif
