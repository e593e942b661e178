#pragma once

class CMAXNode;
class INode;

// The first real node that stands for a scene node of the host; null if there is none. The pointer
// is compared and never followed.

// The scene node is in the scene.
CMAXNode* FindRealNode(const INode* hostNode);

// It was when the host named it, and may be gone by now.
CMAXNode* FindAnnouncedNode(const INode* hostNode);
