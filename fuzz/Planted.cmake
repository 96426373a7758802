# One fault for each target, of the kind that is easily made.
tq_planted(strings common/TqString.cpp [[s/(length + 16) \/ 16/(length + 15) \/ 16/]])
tq_planted(buffers common/TqBuffer.cpp
    [[s/count > limit || position > limit - count/position + count > limit/]])
tq_planted(values common/TqBuffer.cpp [[s/count > BytesLeft(\*this)/count > length/]])
tq_planted(texts common/TqNumber.cpp [[s/"On", "Yes"/"On", "Off", "Yes"/]])
tq_planted(lists common/TqBaseList.cpp [[s/(std::size_t(capacity) + 1)/std::size_t(capacity)/]])
tq_planted(handles common/TqBaseRef.cpp [[s/obj == nullptr ? 0 : obj->seqNum/objectSeqNum/]])
tq_planted(identifiers common/TqSnmpOid.cpp [[s/+ (needed % step != 0)/+ 1/]])
tq_planted(addresses common/TqIpAddress.cpp [[s/field > 255/field > 256/]])
tq_planted(chains common/TqCallbackChain.cpp
    [[s/i = 1; i <= count/i = 1, end = count; i <= end/]])
tq_planted(files common/TqFile.cpp [[s/fgets(line, sizeof line/fgets(line, sizeof line - 1/]])
tq_planted(tftp common/TqTftp.cpp [[s/AcknowledgedBlock() == 0 || sender/true || sender/]])
tq_planted(ifagent examples/ifagent/Interface.cpp [[s/std::min(packets, \(.*\))/\1/]])
tq_planted(tqfetch tools/tqfetch/Message.cpp [[s/0xA0, 0x800/0x80, 0x800/]])
tq_planted(tqitems tools/tqitems/Json.cpp [[s/ || c == '\\\\') quoted/) quoted/]])
