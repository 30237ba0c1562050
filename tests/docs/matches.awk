# Does the first file show the second one? A line "..." in the first stands for any number of lines; blanks at line ends
# do not count. The exit status is 0 for yes, 1 for no.
{ sub(/[ \t\r]+$/, "") }
FILENAME == ARGV[1] { shown[++shown_count] = $0; next }
{ real[++real_count] = $0 }

# Do the shown lines from i on stand for the real ones from j on? A "..." takes as few lines as will do.
function fits(i, j,    first) {
  while (i <= shown_count && shown[i] != "...") {
    if (j > real_count || shown[i] != real[j]) {
      return 0
    }
    i++
    j++
  }
  if (i > shown_count) {
    return j > real_count
  }
  if (i == shown_count) {
    return 1
  }
  for (first = j; first <= real_count + 1; first++) {
    if (fits(i + 1, first)) {
      return 1
    }
  }
  return 0
}
END { exit !fits(1, 1) }
