# Reads the samples of one run of Benchmarks/soak; prints about forty of them and what they come to.
# Ends with 1 when the host goes on growing or slows down.
#
# The small files and the large one are looked at each for itself: what a run of them holds in its
# first fifth is what it needs. Progress is told twice a second, so that the last small files may
# be past already. A comparison does not tell how far it is; what it holds at most is printed.

function part_of_run() {
    if ($2 ~ /^downloading/)
        return $3 <= files * 0.95 ? "small files" : $3 > files ? "large file" : ""
    return $2 == "comparing" ? "comparison" : ""
}

# 0 … 1: how far the part has come.
function share(part) {
    return part == "large file" ? $4 / bytes : $3 / files
}

function note(part, column) {
    if (share(part) <= 0.2) {
        if ($column > first[part, column]) first[part, column] = $column
    } else if ($column > later[part, column]) {
        later[part, column] = $column
    }
}

function judge(part, column, name, allowed) {
    if (part == "comparison") {
        printf "%-12s %-10s %8d at most\n", part, name, first[part, column]
        return
    }
    printf "%-12s %-10s %8d at most in the first fifth, %8d afterwards\n", part, name,
        first[part, column], later[part, column]
    if (later[part, column] > first[part, column] + allowed) {
        print "  ... it grows"
        wrong = 1
    }
}

NR == 1 {
    start = $1
    print "  seconds  phase                     file      MiB      KiB  threads  open files"
}
{
    part = part_of_run()
    if (part != "") {
        parts[part] = 1
        for (column = 5; column <= 7; ++column) note(part, column)
    }
    if (part == "small files")
        for (tenth = 1; tenth <= 9; ++tenth)
            if (!(tenth in reached) && $3 >= files * tenth / 10) reached[tenth] = $1
    if ($2 != phase || $1 - shown >= 5) {
        printf "%9.1f  %-22s %7d %8d %8d %8d %11d\n", $1 - start, $2, $3, $4 / 1048576, $5, $6, $7
        phase = $2
        shown = $1
    }
}
END {
    for (part in parts) {
        # Blocks are as long as the network is fast, and several of them wait to be written.
        judge(part, 5, "KiB", part == "large file" ? 65536 : 4096)
        judge(part, 6, "threads", 2)
        judge(part, 7, "open files", 4)
    }
    if (9 in reached) {
        early = reached[4] - reached[1]
        late = reached[9] - reached[6]
        printf "three tenths of the small files took %.1f s early, %.1f s late\n", early, late
        if (late > 2 * early) {
            print "  ... it slows down"
            wrong = 1
        }
    }
    exit wrong
}
