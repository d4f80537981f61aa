#!/usr/bin/env bash
# Checks the help pages: every link and picture has its target, every page is in project and contents under its own title,
# both languages have the same pages, sections and pictures, the pictures tell in words what they show and are those that
# scripts/help-pictures makes, and every caption of the menus is explained. Usage: check-help.sh [folder]
set -euo pipefail
export LC_ALL=C.UTF-8
cd "${1:-$(dirname "$0")/..}"

failed=0
fault() { echo "$*" >&2; failed=1; }

# Targets of links, images and style sheets of a page, or of the entries of contents and index.
targets() { grep -oiE "(href|src)=\"[^\"]*\"|name=\"Local\" value=\"[^\"]*\"" "$1" | sed -E 's/.*="([^"]*)"$/\1/'; }

# Values of the id attributes of a page, one per line.
anchors() { grep -oE ' id="[^"]*"' "$1" | sed -E 's/.*"(.*)"/\1/' || true; }

check_targets() {
    local file=$1 target page anchor
    while IFS= read -r target; do
        case $target in
            http:* | https:* | mailto:*) fault "$file: is a link out of the help: $target"; continue ;;
        esac
        page=${target%%#*} anchor=
        [[ $target != *'#'* ]] || anchor=${target#*#}
        page=$(dirname "$file")/${page:-$(basename "$file")}
        if [ ! -f "$page" ]; then
            fault "$file: has no target: $target"
        elif [ -n "$anchor" ] && ! grep -qxF -- "$anchor" <(anchors "$page"); then
            fault "$file: no such section: $target"
        fi
    done < <(targets "$file")
}

check_page() {
    local page=$1 project=$2 name title repeated
    name=$(basename "$page")
    title=$(sed -n 's,^<title>\(.*\)</title>$,\1,p' "$page")
    iconv -f UTF-8 -t UTF-8 "$page" > /dev/null 2>&1 || fault "$page: not UTF-8"
    grep -q 'charset=utf-8' "$page" || fault "$page: no character set"
    repeated=$(anchors "$page" | sort | uniq -d)
    ! grep -o '<img[^>]*>' "$page" | grep -qv ' alt="[^"]' || fault "$page: a picture without words"
    [ -z "$repeated" ] || fault "$page: two sections are called $repeated"
    grep -qxF -- "$name" <(tr -d '\r' < "$project.hhp") || fault "$project.hhp: does not list $name"
    grep -qF -- "<param name=\"Name\" value=\"$title\"><param name=\"Local\" value=\"$name\">" "$project.hhc" ||
        fault "$project.hhc: does not hold $name as \"$title\""
}

# Captions of the menus, without mark and key. Those of zoom lists are computed and are not among the strings.
captions() {
    awk -v first=3000 -v last=3199 '
        FNR == NR { if ($1 == "#define" && $3 >= first && $3 <= last) menu[$2]; next }
        $1 in menu { sub(/^[^"]*"/, ""); sub(/"[^"]*$/, ""); sub(/\\t.*/, ""); gsub(/&/, ""); print }
    ' src/app/StringIds.h "$1"
}

check_language() {
    local folder=$1 project=$1/$2 language=$3 page caption picture name
    for page in "$folder"/*.html; do
        check_page "$page" "$project"
        check_targets "$page"
    done
    for picture in "$folder"/pictures/*; do
        name=$(basename "$picture" .png)
        grep -qF "src=\"pictures/$name.png\"" "$folder"/*.html || fault "$picture: no page shows it"
        grep -q "^picture_$name()" scripts/help-pictures || fault "$picture: scripts/help-pictures does not make it"
    done
    check_targets "$project.hhc"
    check_targets "$project.hhk"
    while IFS= read -r caption; do
        grep -qF -- "$caption" "$folder/commands.html" || fault "$folder/commands.html: does not mention \"$caption\""
    done < <(captions "res/strings_$language.rc")
}

[ "$(captions res/strings_en.rc | wc -l)" -gt 20 ] || fault "res/strings_en.rc: its menu captions are not found"
check_language help/en KelvoEN en
check_language help/ru Kelvo ru

# The README shows some of the pictures.
while IFS= read -r target; do
    [ -f "$target" ] || fault "README.md: has no target: $target"
done < <(grep -oE '\]\(help/[^)]*\)' README.md | sed -E 's/^..(.*).$/\1/')

# Pages that the program opens by itself.
while IFS= read -r target; do
    for folder in help/en help/ru; do
        page=$folder/${target%%#*}
        [ -f "$page" ] && { [[ $target != *'#'* ]] || grep -qxF -- "${target#*#}" <(anchors "$page"); } ||
            fault "$folder: the program opens $target"
    done
done < <(grep -rhoE 'L"[a-z]+\.html[^"]*"' src/app/win | sed 's/^L"//; s/"$//')

outline() { (cd "$1" && grep -oHE ' (id|src)="[^"]*"' -- *.html && ls -- *.html); }
diff <(outline help/en) <(outline help/ru) >&2 || fault "English (<) and Russian (>) pages differ"

exit $failed
