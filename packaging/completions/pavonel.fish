# What fish completes after "pavonel".
complete -c pavonel -f
complete -c pavonel -l login-status -d 'Tell whether Pavonel starts at login'
complete -c pavonel -l unregister-login-item -d 'Do not start at login any more'
complete -c pavonel -l update-now -d 'Look for a newer version and install it'
complete -c pavonel -l help -d 'Show the options'
complete -c pavonel -l version -d 'Show the version'
complete -c pavonel -l status -d 'Tell what the Pavonel that runs is about'
complete -c pavonel -l export-stats -d 'Print the statistics as CSV'
complete -c pavonel -l json -d 'Print JSON'
complete -c pavonel -l follow -d 'Print the status at each change'
