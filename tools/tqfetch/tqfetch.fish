# Completion of tqfetch for fish.
complete -c tqfetch -f
complete -c tqfetch -s m -l mode -x -a 'octet netascii' -d 'How the file comes'
complete -c tqfetch -s o -l output -r -F -d 'Where it goes'
complete -c tqfetch -s t -l timeout -x -d 'Give up after so many seconds without a new block'
complete -c tqfetch -s T -l deadline -x -d 'Give up when all is not done after so many seconds'
complete -c tqfetch -s q -l quiet -d 'Show no progress on a terminal'
complete -c tqfetch -s h -l help -d 'Print the help'
complete -c tqfetch -s V -l version -d 'Print the version'
complete -c tqfetch -a '(__fish_print_hostnames)'
