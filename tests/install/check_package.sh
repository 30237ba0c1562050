#!/bin/sh
# The Debian package, installed into an empty root and removed again: check_package.sh BUILD_FOLDER PROJECT_FOLDER SCRATCH_FOLDER.
#
# The root knows which packages this machine has, so that dpkg looks at what the package depends on. Exit status 77 where
# the tools of Debian are missing.
set -u

for tool in dpkg dpkg-deb dpkg-shlibdeps dpkg-parsechangelog; do
  command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done

scratch=$3
root=$scratch/root
rm -rf "$scratch"
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/var/lib/dpkg/triggers"
package=$("$2/scripts/package" "$1" "$scratch") || exit 1
cp /var/lib/dpkg/status "$root/var/lib/dpkg/status"

in_root() {
  PATH=$PATH:/usr/sbin:/sbin dpkg --root="$root" --log=/dev/null --force-not-root --force-script-chrootless "$@" \
    >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
}
in_root --install "$package"
in_root --status vetro
grep -q '^Status: install ok installed' "$scratch/log" || { cat "$scratch/log"; exit 1; }
sh "$(dirname "$0")/check_tree.sh" "$root/usr" "$2" "$scratch/run" || exit 1
for name in copyright changelog.gz; do
  [ -s "$root/usr/share/doc/vetro/$name" ] || { echo "the package has no $name"; exit 1; }
done
gzip -dc "$root/usr/share/doc/vetro/changelog.gz" | dpkg-parsechangelog -l- --show-field Version >"$scratch/version" || exit 1
dpkg-deb --field "$package" Version | cmp - "$scratch/version" || exit 1
in_root --verify vetro
[ ! -s "$scratch/log" ] || { cat "$scratch/log"; exit 1; }
in_root --remove vetro
left=$(find "$root" -path "$root/var" -prune -o -type f -print)
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
