# Sourced by run and test: configures and builds, and tells how far it is. Usage: build PRESET [TARGET]

build() {
  local preset=$1 target=(${2:+--target "$2"})
  echo "Building ($preset) ..."
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
  # One line that counts on a terminal; elsewhere a line for each tenth, and whatever is no step, such as an error.
  if [ -t 1 ]; then
    NINJA_STATUS="%p  %f of %t steps, %e s  " cmake --build "build/$preset" "${target[@]}"
  else
    NINJA_STATUS="step %f %t " cmake --build "build/$preset" "${target[@]}" | {
      local line told=0
      while IFS= read -r line; do
        if ! [[ $line =~ ^step\ ([0-9]+)\ ([0-9]+)\  ]]; then
          printf '%s\n' "$line"
        elif [ "${BASH_REMATCH[2]}" -gt 9 ] && [ $((BASH_REMATCH[1] * 10 / BASH_REMATCH[2])) -gt $told ]; then
          told=$((BASH_REMATCH[1] * 10 / BASH_REMATCH[2]))
          echo "  ${BASH_REMATCH[1]} of ${BASH_REMATCH[2]} steps"
        fi
      done
    }
  fi
}
