#!/usr/bin/env bash
# The manual pages and the completion know exactly the commands and options that --help knows.
#   help_test.sh FOLDER-OF-THE-TOOL
. "$(dirname "$0")/lib.sh"
tools=$1
# shellcheck source=/dev/null
. "$tools/completion/plxutil"

options_in_help() { plx $1 --help | grep -oE '(^| |,)--[a-z-]+' | tr -d ' ,' | sort -u; }
commands_in_help() { plx $1 --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z0-9]*\) .*/\1/p' | sort; }
page_of() { case $1 in seal | open) echo plxutil-seal ;; version | '') echo plxutil ;; *) echo "plxutil-$1" ;; esac; }

commands=()
for group in '' $(commands_in_help ''); do
  same "commands of '$group'" "$(_plxutil_commands "$group" | tr ' ' '\n' | sort)" \
    "$(commands_in_help "$group")"
  [ -n "$group" ] || continue
  below=$(commands_in_help "$group")
  for command in ${below:-.}; do
    [ "$command" = . ] && commands+=("$group") || commands+=("$group $command")
  done
done
same "number of commands" ${#commands[@]} 21

for command in "${commands[@]}"; do
  page=$tools/man/$(page_of "${command% *}").1.scd
  help=$(options_in_help "$command")
  same "completed options of '$command'" \
    "$(_plxutil_options "$command" | tr ' ' '\n' | sort -u)" "$help"
  for option in $help; do
    [ "$option" = --help ] && continue
    grep -qE -- "\*$option\*" "$page" || fail "$page does not tell $option of '$command'"
    checks=$((checks + 1))
  done
  grep -qE "\*plxutil $command\*|^\*$command\*" "$page" ||
    fail "no manual page tells '$command'"
done

# And no page tells an option that there is not.
for page in "$tools"/man/*.scd; do
  group=$(basename "$page" .1.scd)
  case $group in
    plxutil) known=$(options_in_help version; options_in_help ''; echo --dry-run --check --tag) ;;
    plxutil-seal) known=$(options_in_help seal; options_in_help open) ;;
    *)
      group=${group#plxutil-} known=''
      for command in $(commands_in_help "$group"); do known+=" $(options_in_help "$group $command")"; done
      ;;
  esac
  for option in $(grep -oE '\*--[a-z-]+' "$page" | tr -d '*' | sort -u); do
    case $option in --tag) continue ;; esac
    checks=$((checks + 1))
    grep -qxF -- "$option" <(tr ' ' '\n' <<<"$known") || fail "$page tells $option, which there is not"
  done
done

# Completion as a shell asks for it.
complete_words() {
  COMP_WORDS=(plxutil "$@") COMP_CWORD=$#
  _plxutil
  echo "${COMPREPLY[*]}"
}
same "groups" "$(complete_words d)" "digest des3"
same "commands" "$(complete_words keys ro)" "rotate"
same "options" "$(complete_words keys check --st)" "--stb-id"
same "values" "$(complete_words des3 decrypt --end z)" "zero-block"
same "files are left to the shell" "$(complete_words json find --json -)" "--help --ignore-case --as --json"
finish
