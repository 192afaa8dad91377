#include "rvkusers/clsfw_rvkusers.h"

#include <exception>

namespace zarvik {

CLSFW_RVKUSERS::CLSFW_RVKUSERS(Env env) : env_(std::move(env)) {}

CLSFW_RVKUSERS::~CLSFW_RVKUSERS() {
  if (connection_ && connection_owned_) {
    try {
      connection_->Close();
    } catch (const std::exception&) {
      // Termination ignores errors (the connection may be closed already).
    }
  }
  connection_.reset();
}

}  // namespace zarvik
