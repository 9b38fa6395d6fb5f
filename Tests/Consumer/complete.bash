# complete.bash COMPLETION WORD...: what COMPLETION offers for the last of the words, one a line.
# shellcheck source=/dev/null
. "$1"
shift
COMP_LINE=$*
COMP_POINT=${#COMP_LINE}
COMP_WORDS=() # as readline takes them apart
rest=$COMP_LINE
while [[ $rest =~ ^([[:blank:]]*)([=:]+|[^=:[:blank:]]+)(.*)$ ]]; do
    COMP_WORDS+=("${BASH_REMATCH[2]}")
    rest=${BASH_REMATCH[3]}
done
if [ -z "${*: -1}" ]; then COMP_WORDS+=(""); fi
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_upnputil
if ((${#COMPREPLY[@]} > 0)); then printf '%s\n' "${COMPREPLY[@]}"; fi
