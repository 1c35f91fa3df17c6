// Intentionally empty: the link-check library exists only to be linked.
