"""What scripts/reliability.py is made of."""
