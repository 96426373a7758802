#ifndef REPORTS_H
#define REPORTS_H

#include <string>
#include <vector>

/// Every test runs with an assertion hook that collects the reports. A test asserts them like any
/// other value by taking them; a report that nobody took fails the test.
///
///     string.Compare(number);
///     EXPECT_EQ(TakeReports(), Reports({"TqString"}));
using Reports = std::vector<std::string>;

/// The file names reported since the last call, oldest first, and forgets them.
Reports TakeReports();

/// Has every test run with that hook. Called once, by `main`.
void CollectReports();

#endif
