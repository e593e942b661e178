#pragma once

class CMAXNode;
class INode;

// The first real node that stands for this scene node of the host; null if there is none.
CMAXNode* FindRealNode(INode* hostNode);
