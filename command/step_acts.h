#pragma once

#include "command/steps.h"

// What the steps do. Each reads the words behind a step's name, of which there are as many as its
// kind takes.
namespace headless {

// The Core and its panel.
StepAct MakeAttach(StepWords words);
StepAct MakeDetach(StepWords words);
StepAct MakePress(StepWords words);
StepAct MakeOption(StepWords words);
StepAct MakeConvert(StepWords words);

// Time and scene.
StepAct MakeTime(StepWords words);
StepAct MakePlay(StepWords words);
StepAct MakeSelect(StepWords words);
StepAct MakeDelete(StepWords words);
StepAct MakeUndo(StepWords words);
StepAct MakeRedo(StepWords words);
StepAct MakeMove(StepWords words);
StepAct MakeParent(StepWords words);

// The whole scene, and files.
StepAct MakeNew(StepWords words);
StepAct MakeReset(StepWords words);
StepAct MakeOpen(StepWords words);
StepAct MakeMerge(StepWords words);
StepAct MakeSave(StepWords words);
StepAct MakeRender(StepWords words);

// What is expected.
StepAct MakeExpectNodes(StepWords words);
StepAct MakeExpectUndo(StepWords words);
StepAct MakeExpectAt(StepWords words);
StepAct MakeExpectBox(StepWords words);

}  // namespace headless
