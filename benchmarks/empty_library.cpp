// The floor of loading a library: one without anything in it.
