#pragma once

#include "tvl/adaptor_interface.h"

namespace replay {

// While it lives, the adaptor writes into this library's own log and error registry, so that both
// sides fill one trace and draw their codes from one table. They are taken back before the library
// goes.
class PlacedServices {
  public:
    explicit PlacedServices(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {
        // Both are made, which can fail, before either is placed.
        TVL::ErrorCode* const codes = TVL::ErrorCode::GetInstance();
        TVL::Log* const log = TVL::Log::GetInstance();
        adaptor_.SetErrorCode(codes);
        adaptor_.SetLog(log);
    }
    ~PlacedServices() {
        adaptor_.ClearErrorCode();
        adaptor_.ClearLog();
    }
    PlacedServices(const PlacedServices&) = delete;
    PlacedServices& operator=(const PlacedServices&) = delete;

  private:
    TVL::AdaptorInterface& adaptor_;
};

}  // namespace replay
