#pragma once

#include "host/heap.h"
#include "host/interface.h"

class IUtil;

// A utility of the command panel, made when the user opens it and freed when it closes.
class HOST_API UtilityObj : public MaxHeapOperators {
  public:
    virtual ~UtilityObj();
    virtual void BeginEditParams(Interface* ip, IUtil* iu) = 0;
    virtual void EndEditParams(Interface* ip, IUtil* iu) = 0;
    virtual void SelectionSetChanged(Interface* ip, IUtil* iu);
    virtual void DeleteThis() = 0;
    virtual void SetStartupParam(HostString parameter);
};
