"""Tests of the content generators: run with
    /usr/bin/python3 -B -m unittest discover -s tools/tests -t tools
(ctest runs them as generator_tests)."""
