# bash completion for talvexctl. The command, parameter and channel words come from talvexctl
# itself ("talvexctl words KIND"), so they always match the installed program.

_talvexctl_words() {
  "${COMP_WORDS[0]}" words "$1" 2>/dev/null
}

_talvexctl() {
  local cur=${COMP_WORDS[COMP_CWORD]}
  local prev=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $prev in
    --port)
      COMPREPLY=($(compgen -W "sim sim:0,1,2 sim:0,1,2@9600 tcp:" -- "$cur")
                 $(compgen -G "/dev/tty[AUS]*" -- "$cur") $(compgen -G "/dev/pts/[0-9]*" -- "$cur"))
      return ;;
    --id)
      COMPREPLY=($(compgen -W "$(seq 0 32)" -- "$cur"))
      return ;;
    --file)
      COMPREPLY=($(compgen -f -X '!*.tvx' -- "$cur") $(compgen -d -S / -- "$cur"))
      compopt -o nospace 2>/dev/null
      return ;;
    --channel)
      COMPREPLY=($(compgen -W "$(_talvexctl_words channels)" -- "$cur"))
      return ;;
    --part)
      COMPREPLY=($(compgen -W "hp lp delay whole eq1 eq2 eq3 eq4 eq5 eq6 eq7" -- "$cur"))
      return ;;
  esac
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W "--port --id --trace --json --file --help --version" -- "$cur"))
    return
  fi
  # The command is the first word that is neither an option nor an option's value.
  local command="" position=0 i word
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case $word in
      --port | --id | --file) ((i++)) ;;
      -*) ;;
      *)
        if [[ -z $command ]]; then command=$word; else ((position++)); fi ;;
    esac
  done
  if [[ -z $command ]]; then
    COMPREPLY=($(compgen -W "$(_talvexctl_words commands) help" -- "$cur"))
    return
  fi
  case $command in
    get | set)
      ((position == 0)) && COMPREPLY=($(compgen -W "$(_talvexctl_words params)" -- "$cur")) ;;
    copy)
      ((position < 2)) && COMPREPLY=($(compgen -W "$(_talvexctl_words channels)" -- "$cur")) ;;
    names)
      COMPREPLY=($(compgen -W "$(_talvexctl_words channels | sed 's/$/=/')" -- "$cur"))
      compopt -o nospace 2>/dev/null ;;
    response)
      COMPREPLY=($(compgen -W "--channel --part --sum" -- "$cur")) ;;
    plot)
      if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "--channel --whole --sum --cursor --hz --db --dpi" -- "$cur"))
      else
        COMPREPLY=($(compgen -f -X '!*.@(png|svg|csv)' -- "$cur") $(compgen -d -S / -- "$cur"))
        compopt -o nospace 2>/dev/null
      fi ;;
    words)
      ((position == 0)) && COMPREPLY=($(compgen -W "commands params channels" -- "$cur")) ;;
    type)
      ((position == 0)) && COMPREPLY=($(compgen -W "0 1 2" -- "$cur")) ;;
    pull | push)
      COMPREPLY=($(compgen -f -X '!*.tvx' -- "$cur") $(compgen -d -S / -- "$cur"))
      compopt -o nospace 2>/dev/null ;;
  esac
}

complete -F _talvexctl talvexctl
