#!/usr/bin/env bash
# manual.sh ZOREN OUT: from the help texts of the command line ZOREN its manual pages, OUT/man1;
# from the completion that it makes for bash OUT/zoren, and for zsh, which runs bash's, OUT/_zoren.
set -euo pipefail
zoren=$1 out=$2
# No line of the help is too long for a manual page, which breaks them itself.
export JDK_JAVA_OPTIONS=-Dpicocli.usage.width=400
version=$("$zoren" --version)
rm -rf "$out"
mkdir -p "$out/man1"

# page NAME SEE_ALSO COMMAND...: the page of a command, whose help begins with what it does
page() {
    local name=$1 also=$2 help=$out/help does
    shift 2
    # A usage of several lines is what help2man calls "or:".
    "$@" --help | sed '/^Usage:/,/^$/ s/^ *zoren/  or:  zoren/' >"$help"
    does=$(sed -n '1 { s/\.$//; s/^./\l&/; p }' "$help")
    help2man --no-info --section=1 --source="$version" --version-string="${version#* }" \
        --name="$does" --include=<(printf '[SEE ALSO]\n%s\n' "$also") \
        --help-option="${help@Q}" cat |
        # A name of two words is one in a title; examples stay lines.
        sed -e "/^\.TH/ s/.* \"1\"/.TH ${name^^} \"1\"/" \
            -e "/^\.SH NAME/ { n; s/^[^\\\\]*/${name//-/\\\\-} / }" \
            -e '/^\.SH EXAMPLE/,/^\.SH/ { s/^\.IP$/.nf/; s/^\.PP$/.fi\n&/ }' \
            -e '/^\.SH "SEE ALSO"/ i .fi' | gzip -9n >"$out/man1/$name.1.gz"
}

commands=$("$zoren" --help | sed -n '/^Commands:/,/^$/ s/^  \([a-z][a-z-]*\) .*/\1/p')
pages=
for command in $commands; do
    page "zoren-$command" '.BR zoren (1)' "$zoren" "$command"
    pages+="${pages:+,$'\n'}.BR zoren-$command (1)"
done
page zoren "$pages" "$zoren"
rm "$out/help"

"$zoren" generate-completion | sed 1d >"$out/zoren"
{
    echo '#compdef zoren'
    echo 'autoload -U +X bashcompinit && bashcompinit'
    echo 'compopt() { }' # which only bash has
    sed '/^elif .*ZSH_VERSION/,/^fi/ { /^fi/!d }' "$out/zoren"
    echo '_bash_complete -o default -F _complete_zoren'
} >"$out/_zoren"
