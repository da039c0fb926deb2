# Completion of vgnctl for bash.
#
# It asks: the tool's own --help for commands and options, the running property service for paths. So it knows every
# group of commands, and offers no paths without a service.

# _vgnctl_section TITLE HELP: the names in one section of a help text, a line each; options without their short forms.
_vgnctl_section() {
  local line inside=
  while IFS= read -r line; do
    if [[ $line == "$1:" ]]; then
      inside=yes
    elif [[ $line != ' '* ]]; then
      inside=
    elif [[ $inside && $line =~ ^\ \ (-[[:alpha:]],)?((--)?[[:alpha:]][[:alnum:]-]*) ]]; then
      printf '%s\n' "${BASH_REMATCH[2]}"
    fi
  done <<<"$2"
}

# _vgnctl_paths TOOL WORD: property paths that begin with WORD, each up to its next "/", a line each, quoted.
_vgnctl_paths() {
  local word=${2//\\/} folder=/ line path rest
  local -A found=()
  [[ $word == */* ]] && folder=${word%/*}
  while IFS= read -r line; do
    path=${line%%=*}
    # A backslash stands for characters that a command line cannot show.
    if [[ $path == "$word"* && $path != *\\* ]]; then
      rest=${path#"$word"}
      [[ $rest == */* ]] && path=$word${rest%%/*}/
      [[ $path ]] && found[$path]=yes
    fi
  done < <("$1" property list "${folder:-/}" 2>/dev/null)
  for path in "${!found[@]}"; do
    printf '%q\n' "$path"
  done
}

_vgnctl() {
  local word=$2 tool=${COMP_WORDS[0]/#\~\//$HOME/} operands=0 help earlier
  local -a command=("$tool")
  COMPREPLY=()
  help=$("$tool" --help 2>/dev/null) || return
  for earlier in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ $earlier != -* && $'\n'$(_vgnctl_section Subcommands "$help")$'\n' == *$'\n'"$earlier"$'\n'* ]]; then
      command+=("$earlier")
      help=$("${command[@]}" --help 2>/dev/null)
    elif [[ $earlier != -* ]]; then
      operands=$((operands + 1))
    fi
  done

  local subcommands
  subcommands=$(_vgnctl_section Subcommands "$help")
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(
      compgen -W "$(_vgnctl_section Options "$help"; _vgnctl_section Chain "$help")" -- "$word"
    )
  elif [[ $subcommands ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$subcommands" -- "$word")
  else
    case "${command[*]:1}:$operands" in
      "property get:0" | "property set:0" | "property create:0" | "property list:0" | "property dump:0" | \
        "property monitor:"*)
        mapfile -t COMPREPLY < <(_vgnctl_paths "$tool" "$word")
        # So that the next part of the path can be typed at once.
        [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == */ ]] && compopt -o nospace
        ;;
      "property set:1") compopt -o default ;; # values that name files, as for the simulated appliance
      "edid tables:0") mapfile -t COMPREPLY < <(compgen -W "established dmt cta hdmi" -- "$word") ;;
      "property "* | "status:"* | "edid mode:"* | "edid compare:"* | "edid color:"* | "edid tables:"*) ;;
      *) compopt -o default ;;
    esac
  fi
}

complete -F _vgnctl vgnctl
