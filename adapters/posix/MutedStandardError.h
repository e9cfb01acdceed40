// Holds back what libraries print to standard error while the object lives: for those that cannot
// be told to keep quiet. It mutes the whole process, so keep it short.
// Thread: one object at a time.
#pragma once

namespace endpin {

class MutedStandardError {
 public:
  MutedStandardError();
  ~MutedStandardError();
  MutedStandardError(const MutedStandardError&) = delete;
  MutedStandardError& operator=(const MutedStandardError&) = delete;

 private:
  int saved_ = -1;  // the descriptor to restore, or -1 when nothing was muted
};

}  // namespace endpin
