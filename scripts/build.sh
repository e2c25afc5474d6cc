# Sourced by run and test: configures and builds, and tells how far it is. Usage: build PRESET [TARGET]

build() {
  local preset=$1 target=(${2:+--target "$2"})
  echo "Building ($preset) ..."
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >/dev/null
  # One line that counts on a terminal; elsewhere a line for each tenth, and whatever is no step, such as an error.
  if [ -t 1 ]; then
    NINJA_STATUS="%p  %f of %t steps, %e s  " cmake --build "build/$preset" "${target[@]}"
  else
    NINJA_STATUS="step %f %t " cmake --build "build/$preset" "${target[@]}" | awk '
      $1 == "step" && $3 + 0 > 0 {
        tenth = int($2 * 10 / $3)
        if (tenth > told && $3 > 9) { print "  " $2 " of " $3 " steps"; fflush(); told = tenth }
        next
      }
      { print; fflush() }'
  fi
}
