"""The modules of scripts/mutate.py."""
