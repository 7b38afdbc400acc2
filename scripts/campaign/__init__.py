"""The modules of scripts/reliability.py."""
