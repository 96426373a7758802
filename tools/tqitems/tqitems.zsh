#compdef tqitems
_arguments -s -S \
    '(-e --encode)'{-e,--encode}'[encode each line into an item]' \
    '(-t --types)'{-t+,--types=}'[what the items are]:types:_sequence compadd - string number counter boolean float buffer' \
    '(-j --json)'{-j,--json}'[print or read JSON]' \
    '(- *)'{-h,--help}'[print the help]' \
    '(- *)'{-V,--version}'[print the version]' \
    '1:file:_files'
