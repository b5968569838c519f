#pragma once

namespace kalvo::host {

struct AuditArguments;
struct CheckArguments;
struct PageArguments;
struct PasswdArguments;
struct SampleArguments;
struct ServeArguments;
struct UndeleteArguments;

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

// Lists the deleted messages that are held, or restores one; the audit log has it.
int RunUndelete(const UndeleteArguments& arguments);

// Lists lines of the audit log, the newest last, or checks its chain: 1 when it is not whole.
int RunAudit(const AuditArguments& arguments);

}  // namespace kalvo::host
