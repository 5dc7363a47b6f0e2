# Completion of catalogcore for bash.

_catalogcore() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands="sort classify ls tree index mv rm protect check gallery export help"
  local global="--catalog --wait --help" command="" word i
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case $word in
      --catalog) ((i++)) ;;
      -*) ;;
      *)
        if [[ $command == index ]]; then
          command="index $word"
          break
        fi
        command=$word
        [[ $command == index ]] || break
        ;;
    esac
  done

  case $previous in
    --catalog | --folder)
      compopt -o dirnames +o default
      return
      ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W "json csv" -- "$current")
      return
      ;;
    --jobs | --memory | --time-limit | --files-from) return ;;  # readline completes files
  esac

  local options
  case $command in
    "") options="$commands --version" ;;
    sort) options="--again --dry-run --json --jobs --memory --time-limit" ;;
    classify) options="--json --jobs --memory --time-limit" ;;
    ls) options="--folder --json" ;;
    tree) options="--json" ;;
    index) options="add rename rm protect" ;;
    "index add") options="--no-move --no-remove --no-rename" ;;
    "index rename" | "index rm") options="--force" ;;
    mv) options="--force --to --files-from --null" ;;
    rm) options="--force --files-from --null" ;;
    "index protect") options="--no-move --no-remove --no-rename --none" ;;
    protect) options="--no-move --no-remove --none --files-from --null" ;;
    check) options="--forget --json" ;;
    gallery) options="--jobs --memory --time-limit" ;;
    help) options="$commands" ;;
    export) options="--format" ;;
  esac
  if [[ $current == -* || -z $command || $command == index || $command == help ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options $global" -- "$current")
    return
  fi
  # Arguments: numbers of indexes where one belongs, else files, which readline completes itself.
  case $command in
    mv) [[ $current == [0-9]* || $previous == -t || $previous == --to ]] || return ;;
    ls | index\ *) ;;
    *) return ;;
  esac
  local catalog=() numbers
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} == --catalog ]] || continue
    word=${COMP_WORDS[i + 1]//[\\\"\']/}  # as typed, with quotes
    catalog=(--catalog "${word/#~\//$HOME/}")
  done
  numbers=$("${COMP_WORDS[0]}" "${catalog[@]}" tree --json 2>/dev/null | grep -o '"index":[0-9]*' | grep -o '[0-9]*$')
  mapfile -t COMPREPLY < <(compgen -W "$numbers" -- "$current")
}

complete -o default -F _catalogcore catalogcore
