# Completion of catalogcore for bash.

_catalogcore() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands="sort classify ls tree index mv rm protect check gallery export"
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
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return
      ;;
    --format)
      mapfile -t COMPREPLY < <(compgen -W "json csv" -- "$current")
      return
      ;;
    --jobs) return ;;
  esac

  local options
  case $command in
    "") options="$commands --version" ;;
    sort) options="--again --dry-run --json --jobs" ;;
    classify) options="--json --jobs" ;;
    ls) options="--folder --json" ;;
    tree) options="--json" ;;
    index) options="add rename rm protect" ;;
    "index add") options="--no-move --no-remove --no-rename" ;;
    "index rename" | "index rm" | mv | rm) options="--force" ;;
    "index protect") options="--no-move --no-remove --no-rename --none" ;;
    protect) options="--no-move --no-remove --none" ;;
    check) options="--forget --json" ;;
    gallery) options="--jobs" ;;
    export) options="--format" ;;
  esac
  if [[ $current == -* || -z $command || $command == index ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options $global" -- "$current")
    return
  fi
  # Arguments: the names of indexes where one belongs, else files.
  local files
  mapfile -t files < <(compgen -f -- "$current")
  COMPREPLY=("${files[@]}")
  case $command in
    ls | mv | index\ *)
      local IFS=$'\n' catalog=()
      for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == --catalog ]] && catalog=(--catalog "${COMP_WORDS[i + 1]}")
      done
      local numbers
      numbers=$("${COMP_WORDS[0]}" "${catalog[@]}" tree --json 2>/dev/null | grep -o '"index":[0-9]*' | grep -o '[0-9]*$')
      [[ $command == ls || $command == index\ * ]] && COMPREPLY=()
      mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$numbers" -- "$current")
      ;;
  esac
}

complete -o filenames -F _catalogcore catalogcore
