"""Adjusts pictures on many machines: python -m keladjust.farm, or keladjust-farm.

Dask distributes the work; the command-line program does each picture in a process of its own.
docs/farm.md tells how to set up machines.
"""
