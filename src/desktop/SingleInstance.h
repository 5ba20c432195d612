#pragma once

#include <string>

namespace tessara {

/// Tells whether this is the first running instance that holds a lock. The system takes the lock back from a
/// process that ends, however it ends.
class SingleInstance {
  public:
    /// Takes the lock where it is free. Where no lock file can be made every instance is the first.
    explicit SingleInstance(const std::string& lockFile);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    bool IsFirst() const { return first_; }

  private:
    int descriptor_ = -1;
    bool first_ = true;
};

/// The lock file of the user's instances on the display that the program runs on.
std::string InstanceLockFile();

}  // namespace tessara
