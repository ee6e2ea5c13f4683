#!/bin/sh
set -eu

main() {
  echo "Hello, ${1:-world}!"
}

main "$@"
