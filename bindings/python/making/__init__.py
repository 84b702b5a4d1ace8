"""What makes the package's generated files while its wheel is built."""
