#pragma once

// Start-up of the commands: the catalogue of wire records.
namespace Interface::CommandMod {

// The first call keeps the flag and fills the catalogue (command/catalogue.h); later calls change nothing.
//   profiling: every command logs the time that it took
void InitializeModule(bool const& profiling);

// False until InitializeModule() was called.
bool profilingEnabled();

// For tests only: back to the state before InitializeModule().
void ForgetModule();

}  // namespace Interface::CommandMod
