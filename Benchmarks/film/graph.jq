# What the ffmpeg filter graph must know of the film, from `ombrel-record plan --frames 60`: expressions that follow
# camera and pointer, linear between knots six frames apart where something moves, found by halving.
def tree($variable; $knots; $from; $to):
  if $to - $from <= 1 then
    $knots[$from] as $a | $knots[$to] as $b
    | if $a[1] == $b[1] or $a[0] == $b[0] then "\($a[1])"
      else "(\($a[1])+(\($b[1] - $a[1]))*(\($variable)-\($a[0]))/\($b[0] - $a[0]))" end
  else ((($from + $to) / 2) | floor) as $middle
    | "if(lt(\($variable),\($knots[$middle][0])),"
      + tree($variable; $knots; $from; $middle) + "," + tree($variable; $knots; $middle; $to) + ")" end;
def knots(value):
  . as $frames
  | [range(0; length; 6), length - 1] | unique
  | map([., ($frames[.] | value | . * 10000 | round | . / 10000)]) as $all
  | [$all | range(length) | select(. == 0 or . == ($all | length) - 1
      or $all[.][1] != $all[. - 1][1] or $all[.][1] != $all[. + 1][1]) | $all[.]];
def expression($variable; value): knots(value) as $knots | tree($variable; $knots; 0; ($knots | length) - 1);

# Output seconds of a source second: the pieces one after the other, each at its speed.
def retimed:
  [.plan.segments[] | select(.reason != "cut")]
  | reduce .[] as $piece ({at: 0, text: "", ends: ""};
      .text += "if(lt(T,\($piece.end)),\(.at)+max(T-\($piece.start),0)/\($piece.speed),"
      | .ends += ")" | .at += ($piece.end - $piece.start) / $piece.speed)
  | "\(.text)\(.at)\(.ends)";
def kept: [.plan.segments[] | select(.reason != "cut") | "gte(t,\(.start))*lt(t,\(.end))"] | join("+");

.style.window as $w
| (.plan.crop // {x: 0, y: 0, w: 1, h: 1}) as $crop
| retimed as $retimed | kept as $kept
| ($w.w / 2 | round | . * 2) as $width | ($w.h / 2 | round | . * 2) as $height
| .plan.source as $source
| .frames
| expression("on"; 1 / .view.w) as $zoom
| expression("on"; .view.x * $source.width) as $left
| expression("on"; .view.y * $source.height) as $top
| expression("n"; if .pointer then (.pointer.x - .view.x) / .view.w * $w.w + $w.x else -200 end) as $x
| expression("n"; if .pointer then (.pointer.y - .view.y) / .view.h * $w.h + $w.y else -200 end) as $y
| "movie=backdrop.png,format=yuv420p,loop=-1:1:0,setpts=N/60/TB[backdrop];
movie=mask.png,format=gray,loop=-1:1:0,setpts=N/60/TB[mask];
movie=pointer.png,format=yuva420p,loop=-1:1:0,setpts=N/60/TB[pointer];
[0:v]select='\($kept)',setpts='(\($retimed))/TB',fps=60,tpad=stop=-1:stop_mode=clone,format=yuv420p,
crop=iw*\($crop.w):ih*\($crop.h):iw*\($crop.x):ih*\($crop.y),
zoompan=z='\($zoom)':x='\($left)':y='\($top)':d=1:s=\($width)x\($height):fps=60,setsar=1[window];
[window][mask]alphamerge[rounded];
[backdrop][rounded]overlay=\($w.x | round):\($w.y | round):format=yuv420[under];
[under][pointer]overlay=x='\($x)':y='\($y)':format=yuv420[film]"
