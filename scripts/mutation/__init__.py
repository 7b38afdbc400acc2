"""What scripts/mutate.py is made of."""
