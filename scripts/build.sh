# Sourced by run and test: configures and builds, and tells how far it is. Usage: build PRESET [OPTION...] [-- TARGET]
# (options go to the configuring).

build() {
  local preset=$1 options=() target=()
  shift
  while [ $# -gt 0 ]; do
    [ "$1" = -- ] && { target=(--target "${@:2}"); break; }
    options+=("$1")
    shift
  done
  echo "Building ($preset) ..."
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" "${options[@]}" >/dev/null
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
