# Completion of quorvex for bash. What there is to complete, the command's own help says.
_quorvex() {
  local program=${COMP_WORDS[0]/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]}
  local previous=${COMP_WORDS[COMP_CWORD - 1]} subcommand='' words='' help value i
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ ${COMP_WORDS[i]} == -* ]] && continue
    subcommand=${COMP_WORDS[i]}
    break
  done
  help=$("$program" ${subcommand:+"$subcommand"} --help 2>/dev/null) || return

  # What the option before the word takes: "PATH", "N". A flag takes nothing.
  value=$(awk -v option="$previous" '
    $1 ~ /^-/ && index("," $1 ",", "," option ",") {
      sub(/^ *[^ ]* ?/, "")
      if (/^[^ ]/) print $1
    }' <<<"$help")
  if [[ $word == -* ]]; then
    words=$(awk '$1 ~ /^-/ { gsub(",", " ", $1); print $1 }' <<<"$help")
  elif [[ $value == *{*} ]]; then
    words=${value#*\{}
    words=${words//[,\}]/ }
  elif [[ -z $subcommand ]]; then
    words=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\).*/\1/p' <<<"$help")
  fi
  if [[ -n $words ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  elif [[ $value == PATH* ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  elif [[ -z $value && $help =~ ' '(FILE|PATH) ]]; then
    mapfile -t COMPREPLY < <(compgen -d -- "$word")
    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -X '!*.[rR][eE][cC]' -- "$word")
  fi
}
complete -o filenames -F _quorvex quorvex
