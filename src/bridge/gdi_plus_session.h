// GdiPlusSession: the process-wide counter around the imaging platform.
#pragma once

namespace brushwork {

class GdiPlusSession {
  public:
    // Starts the platform if nobody has yet, and counts. False if it refused; the count stays.
    // Two threads that both find the count zero would both start it: only a process entry uses
    // the session.
    static bool start();
    // Counts down; the last one stops the platform.
    static void stop();
};

}  // namespace brushwork
