#compdef tqfetch
_arguments -s -S \
    '(-m --mode)'{-m+,--mode=}'[how the file comes]:mode:(octet netascii)' \
    '(-o --output)'{-o+,--output=}'[where it goes]:file:_files' \
    '(-t --timeout)'{-t+,--timeout=}'[give up after so long without a new block]:seconds:' \
    '(-T --deadline)'{-T+,--deadline=}'[give up when all is not done after so long]:seconds:' \
    '(-q --quiet)'{-q,--quiet}'[show no progress on a terminal]' \
    '(- *)'{-h,--help}'[print the help]' \
    '(- *)'{-V,--version}'[print the version]' \
    '1:server:_hosts' \
    '2:file:'
