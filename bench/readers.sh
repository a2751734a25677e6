# Measures the recordset readers beside general XML parsers, and cells by name beside cells by number; sourced by
# bench/run, which sets `work`, a folder, and `program`.

repetitions=5
dialects="rowset schema"
subjects="ours ours-2 pugixml rapidxml expat libxml2 floor"
# Memory is only worth comparing where a program's own needs do not show.
smallest_for_memory=64

file_of() { echo "$work/$1-$2.xml"; }

write_files() {
  for dialect in $dialects; do
    for size in $sizes; do
      run_quietly build/bench-files.log "$program" --generate --dialect "$dialect" --mib "$size" \
        --file "$(file_of "$dialect" "$size")"
    done
  done
}

# One line for each dialect, size and subject: the most memory held, in units of the file's size.
measure_memory() {
  say 'measuring memory'
  local file bytes peak
  for dialect in $dialects; do
    for size in $sizes; do
      ((size >= smallest_for_memory)) || continue
      file=$(file_of "$dialect" "$size")
      bytes=$(stat -c %s "$file")
      for subject in $subjects; do
        peak=$("$program" --peak --subject "$subject" --dialect "$dialect" --file "$file")
        echo "$dialect/$size/$subject $peak $bytes"
      done
    done
  done >"$work/memory"
}

measure_speed() {
  say 'measuring readers, which takes a few minutes'
  local files=()
  for dialect in $dialects; do
    for size in $sizes; do
      files+=("--$dialect" "$(file_of "$dialect" "$size")")
    done
  done
  run_quietly build/bench-speed.log "$program" "${files[@]}" --benchmark_enable_random_interleaving=true \
    --benchmark_repetitions="$repetitions" --benchmark_out="$work/speed.csv" \
    --benchmark_out_format=csv
}

measure_readers() {
  write_files
  measure_memory
  measure_speed
}

print_readers() {
  awk -v names="$(for dialect in $dialects; do for size in $sizes; do
    for subject in $subjects; do echo "$dialect/$size/$subject"; done; done; done)" '
    FILENAME ~ /memory$/ { memory[$1] = sprintf("%.2f", $2 / $3); next }
    {
      split($0, field, ",")
      name = field[1]
      gsub(/"|\/real_time/, "", name)
      speed[name] = field[6]
    }
    END {
      row = "%-8s %5s  %-9s %7s %10s %11s %7s\n"
      printf row, "dialect", "MiB", "subject", "MB/s", "ours is", "peak/file", "noise"
      count = split(names, ordered, "\n")
      for (i = 1; i <= count; ++i) {
        name = ordered[i]
        split(name, part, "/")
        ours = speed[part[1] "/" part[2] "/ours_median"]
        median = speed[name "_median"]
        if (median == "") { print "no figures for " name >"/dev/stderr"; exit 1 }
        printf row, part[1], part[2], part[3], sprintf("%.0f", median / 1e6),
          sprintf("%.2f x", ours / median), name in memory ? memory[name] : "-",
          sprintf("%.1f %%", speed[name "_cv"] * 100)
      }
    }' "$work/memory" "$work/speed.csv"
}

print_cells() {
  awk -F, '
    /^"cells.*_median/ {
      gsub(/"|_median/, "", $1)
      split($1, part, "/")
      time[part[2] "/" part[3] "/" part[4]] = $4
    }
    END {
      row = "%-8s %7s %11s %11s %8s\n"
      printf row, "cell", "columns", "by number", "by name", "ratio"
      count = split("integer/20 integer/60 text/20 text/60", ordered, " ")
      for (i = 1; i <= count; ++i) {
        split(ordered[i], part, "/")
        number = time[ordered[i] "/number"]
        name = time[ordered[i] "/name"]
        if (name == "") { print "no figures for " ordered[i] >"/dev/stderr"; exit 1 }
        printf row, part[1], part[2], sprintf("%.1f ns", number), sprintf("%.1f ns", name),
          sprintf("%.2f x", name / number)
      }
    }' "$work/speed.csv"
}

# What is asked of the readers, as rows of the table that the calls are in: for each dialect and size our reader beside
# the fastest parser, and the most memory that it holds.
print_reader_rows() {
  awk '
    FILENAME ~ /memory$/ {
      if ($1 ~ /ours(-2)?$/) peak[$1] = $2 / $3
      next
    }
    /_(median|cv)",/ {
      split($0, field, ",")
      name = field[1]
      gsub(/"|\/real_time/, "", name)
      time[name] = field[3]  # in ms
      spread[name] = field[6]
      if (name ~ /^(rowset|schema).*\/ours(-2)?_median/) ours[++count] = name
    }
    function row(work, own, against, other, ratio, target, reached, noise) {
      print work "  " own "  -  -  " against "  " other "  -  -  " ratio "  " target "  " reached "  " noise
    }
    END {
      split("pugixml rapidxml expat libxml2", parsers, " ")
      least["1/ours"] = 2.2; least["128/ours"] = 3.3; least["128/ours-2"] = 5
      for (i = 1; i <= count; ++i) {
        split(ours[i], part, "/")
        group = part[1] "/" part[2] "/"
        best = ""
        for (p in parsers) {
          if (best == "" || time[group parsers[p] "_median"] < time[group best "_median"]) best = parsers[p]
        }
        own = time[ours[i]]; other = time[group best "_median"]
        sub(/_median/, "", part[3])
        target = part[1] == "rowset" ? least[part[2] "/" part[3]] : ""
        asked = target != ""
        what = part[1] " reader, " part[2] " MiB, " (part[3] == "ours" ? "one thread" : "two threads")
        row(what ": speed", sprintf("%.3g ms", own), "fastest parser: " best,
          sprintf("%.3g ms", other), sprintf("%.2f", other / own), asked ? ">= " target : "-",
          asked ? (other / own >= target ? "yes" : "no") : "-",
          sprintf("%.0f %%", (spread[group part[3] "_cv"] + spread[group best "_cv"]) * 100))
        if (group part[3] in peak) {
          most = peak[group part[3]]
          row(what ": peak memory", "-", "the file", "-", sprintf("%.2f", most), "<= 1.95",
            most <= 1.95 ? "yes" : "no", "-")
        }
      }
    }' "$work/memory" "$work/speed.csv"
}
