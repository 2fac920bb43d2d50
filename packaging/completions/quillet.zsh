#compdef quillet
_arguments \
    '(-w --wait)-w[end when the files are closed; exit status 1 when edits were not saved]' \
    '(-w --wait)--wait[end when the files are closed; exit status 1 when edits were not saved]' \
    '(-n --new-window)-n[open the files in a window of their own]' \
    '(-n --new-window)--new-window[open the files in a window of their own]' \
    '(-t --new-tab)-t[open an empty tab]' \
    '(-t --new-tab)--new-tab[open an empty tab]' \
    '(-d --diff)-d[compare two files side by side; with --wait, end when that is closed]:file:_files:file:_files' \
    '(-d --diff)--diff[compare two files side by side; with --wait, end when that is closed]:file:_files:file:_files' \
    '(--language)--language[the language of the interface, this time]:word:(en de)' \
    '(-h --help)-h[show this help and end]' \
    '(-h --help)--help[show this help and end]' \
    '(-v --version)-v[show the version and end]' \
    '(-v --version)--version[show the version and end]' \
    '*:file:_files'
