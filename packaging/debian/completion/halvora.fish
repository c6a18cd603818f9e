# What fish offers behind "halvora".
set -l commands authorize publish status settings account
complete -c halvora -n "not __fish_seen_subcommand_from $commands" -f -a authorize -d 'Ask for your permission'
complete -c halvora -n "not __fish_seen_subcommand_from $commands" -f -a publish -d 'Upload pictures'
complete -c halvora -n "not __fish_seen_subcommand_from $commands" -f -a status -d 'Show what the next publish will do'
complete -c halvora -n "not __fish_seen_subcommand_from $commands" -f -a settings -d 'Open the sheet, list or change settings'
complete -c halvora -n "not __fish_seen_subcommand_from $commands" -f -a account -d 'Show the account'
complete -c halvora -l profile -r -d 'Folder of the account and the settings'
complete -c halvora -l help -d 'Show help'
complete -c halvora -n "__fish_seen_subcommand_from publish" -s r -l recursive -d 'Upload what is in folders too'
complete -c halvora -n "__fish_seen_subcommand_from publish" -s q -l quiet -d 'Show only warnings, errors and the summary'
complete -c halvora -n "__fish_seen_subcommand_from publish" -s v -l verbose -d 'Show details too'
complete -c halvora -n "__fish_seen_subcommand_from publish" -l allow-small -d 'Upload even pictures of less than 64 pixels'
complete -c halvora -n "__fish_seen_subcommand_from settings" -f -a "(halvora settings 2>/dev/null </dev/null | string match -r '^[A-Za-z]+=')"
complete -c halvora -n "__fish_seen_subcommand_from account" -l refresh -d 'Ask Flickr about it'
complete -c halvora -n "__fish_seen_subcommand_from account" -l set-token -d 'Store an access token'
