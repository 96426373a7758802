#ifndef COMMAND_H
#define COMMAND_H

class TftpServer;

/// Runs a command, given by its words and a null, and serves until it has ended. Signals that end
/// this process meanwhile are passed on; a command that is still there two seconds later is killed,
/// and the process then ends by the signal.
/// Returns the command's exit status, or 128 plus the number of the signal that ended it.
int ServeCommand(TftpServer& server, char** command);

#endif
