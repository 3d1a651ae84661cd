# An MLT project of the film, from `ombrel-record plan --frames 60`: the backdrop, over it the recording's pieces at
# their speeds, moved and scaled as the camera goes and cut out with round corners, over that the pointer. Takes
# $recording, the video's path.
def xml: gsub("&"; "&amp;") | gsub("<"; "&lt;");
def property($name; $value): "<property name=\"\($name)\">\($value)</property>";
# A rectangle with key frames, six apart where something moves.
def keyed(rectangle):
  .frames as $frames
  | [range(0; $frames | length; 6), ($frames | length) - 1] | unique
  | map({n: ., v: ($frames[.] | rectangle)}) as $all
  | [$all | range(length) | select(. == 0 or . == ($all | length) - 1
      or $all[.].v != $all[. - 1].v or $all[.].v != $all[. + 1].v) | $all[.]]
  | map("\(.n)=\(.v | map(. * 100 | round | . / 100 | tostring) | join(" ")) 1") | join(";");
# Where a transition lays a track over the backdrop.
def over($track): "<transition>" + property("mlt_service"; "qtblend") + property("a_track"; 0)
  + property("b_track"; $track) + "</transition>";

.style.window as $w
| (.frames | length) as $total
| ([.plan.segments[] | select(.reason != "cut")]
   | reduce .[] as $piece ({at: 0, pieces: []}; (.at + ($piece.end - $piece.start) / $piece.speed) as $to
       | .pieces += [$piece + {from: (.at * 60 | round), to: ($to * 60 | round)}] | .at = $to)
   | .pieces) as $pieces
| keyed([$w.x - .view.x / .view.w * $w.w, $w.y - .view.y / .view.h * $w.h, $w.w / .view.w, $w.h / .view.h]) as $view
| keyed(if .pointer then [(.pointer.x - .view.x) / .view.w * $w.w + $w.x,
                          (.pointer.y - .view.y) / .view.h * $w.h + $w.y, 28, 40]
        else [-200, -200, 28, 40] end) as $pointer
| "<mlt>
<profile width=\"1920\" height=\"1080\" progressive=\"1\" sample_aspect_num=\"1\" sample_aspect_den=\"1\"
  display_aspect_num=\"16\" display_aspect_den=\"9\" frame_rate_num=\"60\" frame_rate_den=\"1\" colorspace=\"709\"/>
" + (["backdrop", "pointer"] | map("<producer id=\"\(.)\" out=\"\($total - 1)\">" + property("mlt_service"; "qimage")
      + property("resource"; "\(.).png") + "</producer>\n") | join(""))
+ ([range($pieces | length) as $i | $pieces[$i]
    | "<producer id=\"piece\($i)\" out=\"10000000\">"
      + property("mlt_service"; if .speed == 1 then "avformat" else "timewarp" end)
      + property("resource"; (if .speed == 1 then "" else "\(.speed):" end) + ($recording | xml))
      + property("audio_index"; -1) + "</producer>\n"] | join(""))
+ "<playlist id=\"recording\">"
+ ([range($pieces | length) as $i | $pieces[$i] | ((.start / .speed * 60) | round) as $in
    | "<entry producer=\"piece\($i)\" in=\"\($in)\" out=\"\($in + .to - .from - 1)\"/>"] | join(""))
+ "<filter>" + property("mlt_service"; "qtblend") + property("rect"; $view) + property("distort"; 1) + "</filter>
<filter>" + property("mlt_service"; "qtcrop") + property("rect"; "\($w.x) \($w.y) \($w.w) \($w.h) 1")
+ property("radius"; 0.02) + "</filter></playlist>
<playlist id=\"under\"><entry producer=\"backdrop\" in=\"0\" out=\"\($total - 1)\"/></playlist>
<playlist id=\"over\"><entry producer=\"pointer\" in=\"0\" out=\"\($total - 1)\"/>
<filter>" + property("mlt_service"; "qtblend") + property("rect"; $pointer) + property("distort"; 1)
+ "</filter></playlist>
<tractor id=\"film\" in=\"0\" out=\"\($total - 1)\">
<track producer=\"under\"/><track producer=\"recording\"/><track producer=\"over\"/>
" + over(1) + over(2) + "</tractor></mlt>"
