# Cuts a document into numbered files in `folder`: one for each block between ``` fences, named NUMBER.WORD, and an empty
# NUMBER.heading for each heading of the first two levels.
function next_file(word) {
  return sprintf("%s/%03d.%s", folder, ++number, word)
}
inside && /^```/ { close(file); inside = 0; next }
inside { print > file; next }
/^```/ { inside = 1; word = substr($0, 4); file = next_file(word == "" ? "text" : word); printf "" > file; next }
/^##? / { file = next_file("heading"); printf "" > file; close(file) }
