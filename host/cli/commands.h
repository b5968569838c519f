#pragma once

namespace kalvo::host {

struct CheckArguments;
struct PageArguments;
struct PasswdArguments;
struct SampleArguments;
struct ServeArguments;

// Each runs one sub-command to its end and answers the exit code. What is wrong goes to standard error.

// 1 when the page failed, with the page's file and line; what was written before stands.
int RunPage(const PageArguments& arguments);

// Returns when the server was told to stop.
int RunServe(const ServeArguments& arguments);

int RunSample(const SampleArguments& arguments);
int RunCheck(const CheckArguments& arguments);

// Edits the users file. The password comes from the terminal, asked for twice, or is the first line of standard
// input.
int RunPasswd(const PasswdArguments& arguments);

}  // namespace kalvo::host
