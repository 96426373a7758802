// What net-snmp does.

#include <net-snmp/net-snmp-config.h>

// Behind the one that it needs.
#include <net-snmp/net-snmp-includes.h>

#include "Duty.h"

namespace {

// Numbers only, and no files of names are read for them.
bool Prepare(unsigned int size) {
    static const bool prepared = [] {
        setenv("MIBS", "", 1);
        netsnmp_init_mib();
        netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT,
                           NETSNMP_OID_OUTPUT_NUMERIC);
        return true;
    }();
    return prepared && size <= MAX_OID_LEN;
}

std::vector<oid> Peer(unsigned int size) {
    const std::vector<unsigned long> numbers = Numbers(size);
    return std::vector<oid>(numbers.begin(), numbers.end());
}

const RegisterDuty in("oid_in", "snmp_parse_oid", [](unsigned int size) -> Work {
    if (!Prepare(size)) return Work();
    return [text = IdentifierText(size)](unsigned int times) {
        for (; times > 0; --times) {
            oid numbers[MAX_OID_LEN];
            std::size_t count = MAX_OID_LEN;
            snmp_parse_oid(text.c_str(), numbers, &count);
            Keep(numbers);
        }
    };
});

const RegisterDuty compare("oid_compare", "snmp_oid_compare", [](unsigned int size) -> Work {
    if (!Prepare(size)) return Work();
    std::vector<oid> other = Peer(size);
    ++other.back();
    return [a = Peer(size), b = other](unsigned int times) {
        for (; times > 0; --times) {
            const int order = snmp_oid_compare(a.data(), a.size(), b.data(), b.size());
            Keep(order);
        }
    };
});

const RegisterDuty out("oid_out", "snprint_objid", [](unsigned int size) -> Work {
    if (!Prepare(size)) return Work();
    return [numbers = Peer(size)](unsigned int times) {
        char text[8 * MAX_OID_LEN];
        for (; times > 0; --times) {
            snprint_objid(text, sizeof text, numbers.data(), numbers.size());
            Keep(text);
        }
    };
});

}  // namespace
