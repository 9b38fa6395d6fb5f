# Draws comparison.svg and growth.svg in the folder it runs in from the figures there; Benchmarks/run.sh --plot.
set terminal svg size 760,420 dynamic font "sans-serif,13" background "white"
about(file) = system("head -n 1 " . file . " | cut -c 3-")
nanoseconds(file, name) = real(system("sed -n 's|^" . name . " ||p' " . file))

# Bars: documents of one object, and below them a Browse answer of 1,000 objects.
file = "comparison.txt"
set output "comparison.svg"
set label 2 "Text to records, to trees, and the whole path: shorter is faster" at screen 0.5,0.97 center font ",15"
set tmargin 4
set label 1 about(file) at screen 0.5,0.93 center font ",9" textcolor "#666666"
set style fill solid 0.9 noborder
set boxwidth 0.7
set xlabel "times pugixml's in-place parse of the same text"
set grid xtics linecolor "#dddddd"
set yrange [11.6:0.2] # the first at the top
unset key
one = nanoseconds(file, "BM_PugixmlParse")
many = nanoseconds(file, "BM_PugixmlParseBrowse")
$Bars << EOD
1 "pugixml, in place" BM_PugixmlParse 0 0
2 "pugixml, copied out" BM_PugixmlParseAndCopy 0 0
3 "libxml2, tree" BM_Libxml2Parse 0 0
4 "this library, records" BM_Parse 1 0
5 "this library, written again" BM_Write 1 0
6 "this library, whole path" BM_Path 1 0
8 "Browse: pugixml, in place" BM_PugixmlParseBrowse 0 1
9 "Browse: libxml2, tree" BM_Libxml2ParseBrowse 0 1
10 "Browse: this library, all records" BM_ParseBrowse 1 1
11 "Browse: this library, first records" BM_ParseFirstOfBrowse 1 1
EOD
ratio(name, fIsMany) = nanoseconds(file, name) / (fIsMany == 1 ? many : one)
color(fIsOurs) = fIsOurs == 1 ? 0x2a6fbb : 0xb0b0b0
larger(a, b) = a > b ? a : b
set xrange [0:1.2 * larger(ratio("BM_Libxml2Parse", 0), ratio("BM_Libxml2ParseBrowse", 1))] # the longest, and its number
plot $Bars using (0):1:(0):(ratio(strcol(3), $5)):($1 - 0.35):($1 + 0.35):(color($4)):ytic(2) with boxxyerror linecolor rgb variable, \
    $Bars using (ratio(strcol(3), $5)):1:(sprintf("  %.2f", ratio(strcol(3), $5))) with labels left

# Lines: a flat one is linear time.
reset
file = "growth.txt"
set output "growth.svg"
set label 2 "Time per element: a flat line is linear time" at screen 0.5,0.97 center font ",15"
set tmargin 4
set label 1 about(file) at screen 0.5,0.93 center font ",9" textcolor "#666666"
set logscale xy
set format x "10^{%T}"
set xlabel "elements"
set ylabel "nanoseconds per element"
set grid linecolor "#dddddd"
set key outside right
set linetype 5 linecolor "#b0a000"
set linetype 9 linecolor "#808080" # there are only eight by default
series = "Growth/Resources Growth/ExtraInfo Growth/AlbumArt Growth/Namespaces Growth/NestedStored Growth/GroupSlavesRead Growth/ConfigLoad GrowthOfBrowseResult PathOfResources"
titles = "'res elements' 'extra elements' 'album art' 'declarations' 'nested elements' 'slaves of a group' 'sections' 'objects of a Browse' 'whole path, res'"
plot for [i = 1:words(series)] "< sed -n 's|^BM_" . word(series, i) . "/||p' " . file using 1:($2 / $1) \
    with linespoints pointtype 7 pointsize 0.5 linewidth 1.5 title word(titles, i)
