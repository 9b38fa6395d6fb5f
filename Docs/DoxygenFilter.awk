# Shows the headers to Doxygen as it wants them, so that they can be written as they are: plain comments become its own,
# and what is said once for several declarations becomes the heading of a group.
#
#   /* text */ above a declaration            its description
#   /* text */ above an empty line            the heading of the functions that follow, up to a type or a constant; the first
#                                             one of a header describes the header, in which a class may stand for it
#   declaration; /* text */   or   // text    its description
#   @param aName, anOther out: text           output parameters
#
# Enumerators, fields, constants and plain type names without a description are in the manual, too: their names say it.

function escape(aText)
{
    gsub(/\\/, "\\\\\\\\", aText)
    gsub(/[<>#%&]/, "\\\\&", aText)
    gsub(/[*]/, "\\*", aText)
    gsub(/@/, "\\@", aText)
    gsub(/\\@param/, "@param", aText)
    gsub(/\\@return/, "@return", aText)
    gsub(/"/, "\\&quot;", aText) # in quotation marks nothing is taken for an escape
    return aText
}

# Parameters are named as Doxygen takes them: with their direction, and without blanks between names.
function parameters(aText,    theNames)
{
    if (match(aText, /@param +[A-Za-z]+(, [A-Za-z]+)* (in and )?out[,:]/))
    {
        theNames = substr(aText, RSTART, RLENGTH - 1)
        aText = substr(aText, 1, RSTART - 1) "@@" substr(aText, RSTART + RLENGTH)
        sub(/^@param +/, theNames ~ / in and out$/ ? "@param[in,out] " : "@param[out] ", theNames)
        sub(/ (in and )?out$/, "", theNames)
        gsub(/, /, ",", theNames)
        sub(/@@ */, theNames " ", aText)
    }
    else if (match(aText, /@param +[A-Za-z]+(, [A-Za-z]+)+ /))
    {
        theNames = substr(aText, RSTART, RLENGTH)
        aText = substr(aText, 1, RSTART - 1) "@@" substr(aText, RSTART + RLENGTH)
        gsub(/, /, ",", theNames)
        sub(/@@/, theNames, aText)
    }
    return aText
}

# One line of a comment, without its marks. A block that is set off and indented stays as it is.
function words(aLine,    theText)
{
    theText = aLine
    if (theText ~ /^ *$/) { gfAfterBlank = 1; return "" }
    if (theText ~ /^     / && (gfAfterBlank || gfBlock)) { gfBlock = 1; gfAfterBlank = 0; return theText }
    gfBlock = 0
    gfAfterBlank = 0
    return parameters(escape(theText))
}

# The comment that begins in this line at its "/*", as lines in gLines[1..gCount]; what stands behind it is dropped.
function read_comment(aText,    theLine)
{
    gCount = 0
    gfBlock = gfAfterBlank = 0
    sub(/^\/\*\**/, "", aText)
    while (1)
    {
        theLine = aText
        gfEnd = sub(/ *\*\/.*$/, "", theLine)
        gLines[++gCount] = words(theLine)
        if (gfEnd || (getline aText) <= 0) { break }
        sub(/^ *\*\//, "*/", aText)
        if (aText !~ /^\*\//) { sub(/^ *\*?/, "", aText) }
    }
}

# What begins with the result has no summary otherwise.
function print_comment(aStart,    i)
{
    printf "%s", aStart
    for (i = 1; i < gCount && gLines[i] == ""; ++i)
        continue
    sub(/^ *@return /, " Gives ", gLines[i])
    for (i = 1; i <= gCount; ++i)
        print gLines[i]
    print "*/"
}

# A record can have groups of its own; aDepth is 1 there, else 0.
function end_group(aDepth)
{
    if (aDepth in gGroups) { print "/** @} */" }
    delete gGroups[aDepth]
}

# The first sentence is the heading.
function begin_group(    theText, theHeading, i, theEnd)
{
    end_group(gfRecord)
    theText = gLines[1]
    for (i = 2; i <= gCount && theText !~ /[.:]( |$)/ && gLines[i] != ""; ++i)
        theText = theText gLines[i]
    gsub(/^[ -]+|[ -]+$/, "", theText)
    theEnd = match(theText, /[.:]( |$)/) ? RSTART : length(theText) + 1
    theHeading = substr(theText, 1, theEnd - 1) # where a backslash is not taken for an escape
    gsub(/\\</, "\\&lt;", theHeading)
    gsub(/\\>/, "\\&gt;", theHeading)
    gsub(/\\/, "", theHeading)
    print "/** @name " theHeading
    print substr(theText, theEnd + 1)
    for (; i <= gCount; ++i)
        print gLines[i]
    print "*/\n/** @{ */"
    gGroups[gfRecord] = 1
}

# gNext holds a line that has been read ahead.
function next_line()
{
    if (gfNext) { gfNext = 0; $0 = gNext; return 1 }
    return (getline) > 0
}

function handle_comment(    theText, theFirst, fIsDescription)
{
    theText = $0
    sub(/^ +/, "", theText)
    theFirst = !gfCode
    fIsDescription = theText ~ /^\/\*\*/
    read_comment(theText)
    gfNext = (getline gNext) > 0
    if (gfNext && gNext ~ /^(enum|struct|typedef|class|#define)/) { end_group(0) } # groups are of functions
    if (fIsDescription)
    {
        print_comment("/**")
        gfDescribed = 1
    }
    else if (gfNext && gNext !~ /^ *$/ && gNext !~ /^ *\/\*/ && gLines[gCount] !~ /:$/)
    {
        print_comment("/**")
        gfDescribed = 1
    }
    else if (theFirst)
    {
        print_comment("/** @file\n")
        gfHeaderDescribed = 1
    }
    else { begin_group() }
}

# A description behind a declaration.
function handle_trailing(aPosition,    theText)
{
    theText = substr($0, aPosition)
    printf "%s ", substr($0, 1, aPosition - 1)
    if (theText ~ /^\/\//)
    {
        sub(/^\/\/ */, "", theText)
        print (theText ~ /^NOLINT/) ? "" : "/**< " escape(theText) " */"
        return
    }
    read_comment(theText)
    print_comment("/**<")
}

# Whether what this line declares is in the manual without a description.
function speaks_for_itself()
{
    if (gfDescribed) { return 0 }
    return (gfEnumeration && $0 ~ /^    k[A-Za-z0-9_]+( = [^,;]+)?,?$/) || (gfRecord && $0 ~ /^    .*;$/) ||
        $0 ~ /^#define k[A-Za-z0-9_]+ .*[^\\]$/ || $0 ~ /^typedef [a-z0-9_]+ [a-z0-9_]+;$/
}

function handle_code()
{
    if ($0 !~ /^#(pragma|include|ifdef|endif)/ && $0 !~ /^ *$/ && $0 != "extern \"C\" {") { gfCode = 1 }
    if ($0 ~ /^(typedef )?struct [A-Za-z0-9_]+$/) { gfRecord = 1 }
    if ($0 ~ /^(typedef )?enum( [A-Za-z_]+)?$/) { gfEnumeration = 1 }
    if (gClass == "" && $0 ~ /^class ([A-Z]+_API )?[A-Za-z]+$/) { gClass = $NF }
    if ($0 ~ /^}/)
    {
        end_group(1)
        gfRecord = gfEnumeration = 0
    }
    if ($0 ~ /^#ifdef __cplusplus/) { end_group(0) }
    if (match($0, /[^ ] +(\/\/|\/\*) /)) { handle_trailing(RSTART + RLENGTH - 3) }
    else if (speaks_for_itself()) { print $0 " /**< &nbsp; */" }
    else { print ((0 in gGroups) && !gfDescribed && $0 ~ /^[A-Z]+_API /) ? "/** See the head of this group. */ " $0 : $0 }
    gfDescribed = 0
}

BEGIN {
    print "/** @file */"
    gfRecord = 0
}
{
    do
    {
        if ($0 ~ /^ *\/\*/) { handle_comment() }
        else { handle_code() }
    } while (gfNext && next_line())
}
END {
    end_group(0)
    if (!gfHeaderDescribed && gClass != "") { print "/** @file\n @copybrief " gClass " */" }
}
