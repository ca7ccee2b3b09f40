#!/usr/bin/env bash
# Installs what building the kit and a game with it needs (scripts/packages.txt), as far as this machine lacks it.
source "$(dirname "$0")/prepare.sh"
install_packages
