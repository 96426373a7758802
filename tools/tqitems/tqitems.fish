# Completion of tqitems for fish.
complete -c tqitems -s e -l encode -d 'Encode each line into an item'
complete -c tqitems -s t -l types -x -d 'What the items are' \
    -a '(__fish_append , string number counter boolean float buffer)'
complete -c tqitems -s j -l json -d 'Print or read JSON'
complete -c tqitems -s h -l help -d 'Print the help'
complete -c tqitems -s V -l version -d 'Print the version'
