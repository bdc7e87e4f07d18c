# Completion of unit(1) for bash. The program itself offers the words: commands, options, settings, operations, units.

_unit() {
  local word line
  COMPREPLY=()
  while IFS= read -r line; do
    if [ "$line" = ":files" ]; then
      compopt -o filenames 2>/dev/null
      word=${COMP_WORDS[COMP_CWORD]}
      while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -f -- "$word")
      return
    fi
    COMPREPLY+=("$line")
  done < <("${COMP_WORDS[0]}" __complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}

complete -F _unit unit
