# Doxygen's input filter for the headers: turns the house's plain comments into documentation.
#
# - The first block of a header is about the file. It is also about the class or namespace of the file's name, or of the name that it
#   begins with, as in "Name: ...", where that has no block of its own.
# - A block right above a declaration is about it, and about the overloads that follow without a blank line.
# - A comment behind a declaration is about it.
#
# Everything else stays a plain comment: blocks with a blank line below, and whatever stands in the body of a function.

# What Doxygen would take for a command, a tag or a link, outside of `code`.
function escaped(text,    parts, count, i, result) {
    if (text ~ /^     /) # a line of code
        return text
    count = split(text, parts, "`")
    for (i = 1; i <= count; ++i) {
        if (i % 2 == 1)
            gsub(/[\\@<>#%&]/, "\\\\&", parts[i])
        result = result (i > 1 ? "`" : "") parts[i]
    }
    return result
}

function print_doc(lines, count,    i) {
    for (i = 1; i <= count; ++i)
        print "///" escaped(lines[i])
}

# A declaration without its list of template parameters.
function without_template(text,    i, c, level) {
    if (text !~ /^template </)
        return text
    for (i = 10; i <= length(text); ++i) {
        c = substr(text, i, 1)
        level += (c == "<") - (c == ">")
        if (level == 0)
            break
    }
    text = substr(text, i + 1)
    sub(/^ +/, "", text)
    return text
}

# Reads a line of code: which braces are open, and what stands of the declaration that is not over.
function read_code(code,    i, c) {
    gsub(/"([^"\\]|\\.)*"/, "\"\"", code)
    gsub(/'([^'\\]|\\.)'/, "' '", code)
    if (code ~ /^ *#/)
        return
    for (i = 1; i <= length(code); ++i) {
        c = substr(code, i, 1)
        if (c == "{") {
            sub(/^ *((public|protected|private): *)*/, "", head)
            if (without_template(head) !~ /^(namespace|class|struct|union|enum)($|[^A-Za-z0-9_])/)
                ++bodies
            opened[++depth] = bodies
            head = ""
        } else if (c == "}") {
            --depth
            bodies = depth ? opened[depth] : 0
            head = ""
        } else if (c == ";") {
            head = ""
        } else {
            head = head c
        }
    }
    head = head " "
}

function is_between_declarations() { return bodies == 0 && head ~ /^ *((public|protected|private): *)*$/ }

# What a line declares: the name in front of its first bracket.
function function_name(code) { return match(code, /[A-Za-z0-9_~]+\(/) ? substr(code, RSTART, RLENGTH - 1) : "" }

# Whether a line begins the class or namespace that the lead is about.
function is_subject(code) {
    if (code ~ /;$/ || !sub(/^(class|struct|namespace) ([A-Z_]+_API )?/, "", code))
        return 0
    sub(/[^A-Za-z0-9_].*/, "", code)
    return code == subject || FILENAME ~ ("/" code "\\.h$")
}

# A line of code, with the block above it, if any. The parameters of a template wait for the line that they belong to.
function take_code(line,    at, comment, code, i) {
    if (line ~ /^ *template <.*>$/ && is_between_declarations()) {
        parameters = line
        return
    }
    code = line
    comment = ""
    at = match(line, / \/\/ /)
    if (at) {
        code = substr(line, 1, at - 1)
        comment = substr(line, at + 3)
    }
    sub(/ +$/, "", code)
    if (is_between_declarations() && code !~ /^ *([}]|#[ep]|#include|(public|protected|private):|$)/) {
        if (held) {
            for (i = 1; i <= held; ++i)
                doc[i] = block[i]
            documented = held
            documented_name = function_name(code)
        }
        if (documented && (held || (documented_name != "" && documented_name == function_name(code))))
            print_doc(doc, documented)
        else if (is_subject(code))
            print_doc(lead, leads)
    } else {
        print_plain()
    }
    held = 0
    if (parameters != "") {
        print parameters
        read_code(parameters)
        parameters = ""
    }
    read_code(code)
    if (comment != "" && bodies == 0 && code ~ /[;,A-Za-z0-9_]$/ && head !~ /\(/)
        print code " ///<" escaped(comment)
    else
        print line
}

function print_plain(    i) {
    for (i = 1; i <= held; ++i)
        print "//" block[i]
    held = 0
}

# A blank line ends a block that has no declaration, and what the last one was about.
function take_blank(    i) {
    if (held && !leads) {
        print "/// @file"
        for (i = 1; i <= held; ++i)
            lead[i] = block[i]
        leads = held
        print_doc(lead, leads)
        if (match(lead[1], /^ [A-Za-z]+: /))
            subject = substr(lead[1], 2, RLENGTH - 3)
        held = 0
    }
    print_plain()
    documented = 0
    print ""
}

/^ *\/\// {
    text = $0
    sub(/^ *\/\//, "", text)
    block[++held] = text
    next
}
/^ *$/ { take_blank(); next }
{ take_code($0) }
END { print_plain() }
