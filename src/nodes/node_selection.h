#pragma once

// Between its begin and its end a batch gathers selected nodes into one selection, without undo
// steps. There is one batch for the whole process. Begin empties the selection.

// False: the batch was open already.
bool BeginSelectionBatch();

// False: no batch was open.
bool EndSelectionBatch();
