"""Runs one file of unittest for ctest: run_tests.py FILE [CLASS | CLASS.CASE ...].

The exit status is 77, which ctest shows as skipped, when every case was skipped. With
KV_REQUIRE_PYTHON=ON in the environment, as in CI, a skipped case is a failure.
"""

import os
import sys
import unittest


class Result(unittest.TextTestResult):
    """A skipped case is a failed one where everything must be there."""

    def addSkip(self, test: unittest.TestCase, reason: str) -> None:
        if os.environ.get("KV_REQUIRE_PYTHON") != "ON":
            super().addSkip(test, reason)
            return
        try:
            raise AssertionError(f"skipped, but KV_REQUIRE_PYTHON is ON: {reason}")
        except AssertionError:
            self.addFailure(test, sys.exc_info())


def skipped_file(reason: str) -> unittest.TestCase:
    """A case in the place of all of a file."""

    def skip() -> None:
        raise unittest.SkipTest(reason)

    return unittest.FunctionTestCase(skip, description="all of the file")


def main() -> int:
    folder, file = os.path.split(os.path.abspath(sys.argv[1]))
    sys.path.insert(0, folder)  # helpers of the tests lie beside them
    module = os.path.splitext(file)[0]
    names = [f"{module}.{name}" for name in sys.argv[2:]] or [module]
    try:
        suite = unittest.defaultTestLoader.loadTestsFromNames(names)
    except unittest.SkipTest as reason:  # of a module that cannot be imported
        suite = unittest.TestSuite([skipped_file(str(reason))])
    if suite.countTestCases() == 0:
        print(f"{file} has no tests", file=sys.stderr)
        return 1
    result = unittest.TextTestRunner(verbosity=2, resultclass=Result).run(suite)
    if not result.wasSuccessful():
        return 1
    # A skipped module or class may count as one.
    return 77 if result.skipped and len(result.skipped) >= result.testsRun else 0


if __name__ == "__main__":
    sys.exit(main())
