# What the checks share. They are sourced and run with bash, from the root of the project.

cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."

# project_files [PATTERN...]: the files of the project that match, also those that are new and not
# ignored, one a line. A "*" of a pattern matches "/" too.
project_files() {
    local file
    git -c safe.directory="$PWD" ls-files --cached --others --exclude-standard --deduplicate \
        -- "$@" | while read -r file; do
        # A file that was removed and not yet committed is still listed.
        [ ! -e "$file" ] || printf '%s\n' "$file"
    done
}
