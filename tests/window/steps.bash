# What the tests of the window do and check, step by step.

patience=20 # seconds before a step counts as failed

# begin_session CORVANE CORVANE_CLI PICTURES: sets $corvane, $corvane_cli and $pictures, and goes to an empty
# folder under $work, which ends with the test.
begin_session() {
  local tool
  for tool in Xvfb openbox xdotool import convert identify; do
    if ! command -v "$tool" >/dev/null; then
      echo "skipped: $tool is not installed"
      exit 77
    fi
  done
  corvane=$(realpath "$1")
  corvane_cli=$(realpath "$2")
  mkdir -p "$3"
  pictures=$(realpath "$3")
  work=$(mktemp -d)
  started=()
  trap finish_session EXIT
  export XDG_CONFIG_HOME="$work/config" XDG_RUNTIME_DIR="$work/runtime" HOME="$work"
  export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb
  mkdir -m 700 -p "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR" "$work/data"
  cd "$work/data"
}

finish_session() {
  for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}

fail() {
  echo "FAILED: $*" >&2
  tail -n 60 "$work/corvane.out" >&2 2>/dev/null || true
  import -window root "$pictures/failed.png" 2>/dev/null || true
  exit 1
}

# until_true MESSAGE COMMAND...: runs the command until it succeeds.
until_true() {
  local message=$1 end=$((SECONDS + patience))
  shift
  until "$@" >/dev/null 2>&1; do
    ((SECONDS < end)) || fail "$message"
    sleep 0.05
  done
}

# The server finds a free display number itself.
start_display() {
  Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$work/display" 2>"$work/display.log" &
  started+=($!)
  until_true "the display server starts" test -s "$work/display"
  export DISPLAY=":$(cat "$work/display")"
  openbox >"$work/openbox.log" 2>&1 &
  started+=($!)
  until_true "the window manager starts" xdotool getwindowfocus
}

start_corvane() {
  "$corvane" "$@" >"$work/corvane.out" 2>&1 &
  program=$!
  started+=("$program")
}

# expect_status STATUS TEXT COMMAND...: the command ends with that status and says the text.
expect_status() {
  local wanted=$1 text=$2 status=0
  shift 2
  "$@" >"$work/corvane.out" 2>&1 || status=$?
  ((status == wanted)) || fail "$* ended with status $status instead of $wanted"
  grep -qF -- "$text" "$work/corvane.out" || fail "$* does not say \"$text\""
}

# The program has ended by itself, and well.
wait_corvane() {
  until_true "the program ends" program_has_ended
  wait "$program" || fail "the program ended with status $?"
}
program_has_ended() { ! kill -0 "$program"; }

has_window() { xdotool search --onlyvisible --name "$1"; }
has_no_window() { ! has_window "$1"; }
is_in_front() { xdotool getactivewindow getwindowname | grep -q -- "$1"; }

# wait_window PATTERN: a window with such a title is in front.
wait_window() {
  until_true "a window \"$1\" opens" is_in_front "$1"
  sleep 0.2
}
wait_no_window() { until_true "the window \"$1\" closes" has_no_window "$1"; }
expect_window() { has_window "$1" >/dev/null || fail "the window \"$1\" is still open"; }
wait_file() { until_true "the file $1 is written" test -s "$1"; }

key() {
  xdotool key --delay 40 "$@"
  sleep 0.1
}

# enter TEXT: types it and presses Enter.
enter() {
  xdotool type --delay 12 -- "$1"
  key Return
}

# choose_menu PLACE KEY...: opens the menu at that place of the menu bar, File being 0, goes to an item with
# the keys and chooses it.
choose_menu() {
  local place=$1
  shift
  sleep 0.2
  key alt+f
  for ((i = 0; i < place; ++i)); do key Right; done
  (($# == 0)) || key "$@"
  key Return
}

# point_at X Y: moves the pointer to that place on screen.
point_at() {
  xdotool mousemove "$1" "$2"
  sleep 0.2
}
point_away() { point_at 1279 899; }
wheel_forward() { xdotool click 4; }
wheel_back() { xdotool click 5; }
right_click() { xdotool click 3; }
double_click() { xdotool click --repeat 2 --delay 60 1; }

# drag BUTTON X Y X Y: from one place on screen to another with the button held.
drag() {
  point_at "$2" "$3"
  xdotool mousedown "$1"
  point_at "$4" "$5"
  xdotool mouseup "$1"
}
right_drag() { drag 3 "$@"; }

picture() {
  sleep 0.4
  import -window root "$pictures/$1.png"
}

# count_pixels PICTURE COLOUR: how many pixels have exactly that colour.
count_pixels() {
  convert "$pictures/$1.png" -fill black +opaque "$2" -fill white -opaque "$2" \
    -format '%[fx:int(mean*w*h+0.5)]' info:
}
red_pixels() { count_pixels "$1" red; }
signature() { identify -format '%#' "$pictures/$1.png"; }

# expect_red PICTURE COUNT: at least that many pixels are the red of triangles.
expect_red() {
  local count
  count=$(red_pixels "$1")
  ((count >= $2)) || fail "$1 shows $count red pixels, fewer than $2"
}
expect_same_red() {
  [[ $(red_pixels "$1") == "$(red_pixels "$2")" ]] || fail "$1 and $2 show a different number of red pixels"
}
# expect_pixels PICTURE COLOUR LEAST MOST
expect_pixels() {
  local count
  count=$(count_pixels "$1" "$2")
  ((count >= $3 && count <= $4)) || fail "$1 shows $count pixels of $2 instead of $3 to $4"
}
expect_line() { [[ $(head -n 1 "$1") == "$2" ]] || fail "$1 does not begin with \"$2\""; }
expect_same() {
  [[ $(signature "$1") == "$(signature "$2")" ]] || fail "$1 and $2 show different things"
}
expect_other() {
  [[ $(signature "$1") != "$(signature "$2")" ]] || fail "$1 and $2 show the same"
}

# A hill on a grid of 20 x 20 points that are slightly out of place, ground units apart 20.
write_survey() {
  awk 'BEGIN {
    for (row = 0; row < 20; ++row)
      for (col = 0; col < 20; ++col) {
        x = 1000 + 20 * col + (row * 7 + col * 3) % 5
        y = 2000 + 20 * row + (row * 3 + col * 5) % 7
        printf "%.2f %.2f %.3f\n", x, y, 100 + 30 * exp(-((col - 10) ^ 2 + (row - 9) ^ 2) / 40)
      }
  }' >"$1"
}

# write_lan FILE WIDTH HEIGHT DRAWING...: an image of one band of bytes, drawn by `convert` on grey 80, and its
# bytes alone as FILE.raw.
write_lan() {
  local file=$1 width=$2 height=$3
  shift 3
  convert -size "${width}x$height" 'xc:#505050' +antialias "$@" -depth 8 "gray:$file.raw"
  {
    printf 'HEAD74\0\0\1\0\0\0\0\0\0\0'
    long_bytes "$width"
    long_bytes "$height"
    head -c 96 /dev/zero
    printf '\0\0\x80\x3f\0\0\x80\xbf' # cells of 1 by -1
    cat "$file.raw"
  } >"$file"
}

# The four bytes of a whole number below 65536, the lowest first.
long_bytes() { printf '%b' "$(printf '\\x%02x\\x%02x\\0\\0' $(($1 % 256)) $(($1 / 256)))"; }
