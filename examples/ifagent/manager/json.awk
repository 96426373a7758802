# json.awk: a file like /proc/net/dev as ifagent --json prints it, behind the time.
BEGIN { printf "\"interfaces\":[" }
{
    name = $1
    sub(/:$/, "", name)
    printf "%s{\"ifDescr\":\"%s\",\"ifIndex\":%d,\"ifOperStatus\":\"unknown\",\"ifInOctets\":%.0f,\"ifInUcastPkts\":%.0f,\"ifInNUcastPkts\":%.0f,\"ifInDiscards\":%.0f,\"ifInErrors\":%.0f,\"ifOutOctets\":%.0f,\"ifOutUcastPkts\":%.0f,\"ifOutDiscards\":%.0f,\"ifOutErrors\":%.0f,\"watched\":true}",
        (NR > 1 ? "," : ""), name, NR, $2, ($3 > $9 ? $3 - $9 : 0), $9, $5, $4, $10, $11, $13, $12
}
END { print "],\"addresses\":[],\"changes\":[]}" }
