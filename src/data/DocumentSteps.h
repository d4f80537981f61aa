#pragma once

namespace quillon {

/// What a step of the pass over the loaded block and the others of its stretch has done.
enum class PrepareStep { More, Done, DoneRescaled };

/// What a step of reading the rest of the open recording has changed.
struct ReadStep {
    bool more = false;
    bool marksChanged = false;    ///< of the loaded block; they were loaded anew
    bool blocksChanged = false;   ///< there are more; File().blockCount is set
    bool titlesChanged = false;   ///< of all blocks
    bool infoChanged = false;     ///< File().fileInfo is set
    bool grown = false;           ///< the loaded block has more samples and was loaded again
    bool signalsChanged = false;  ///< the stretch has other blocks besides the loaded one than before
};

}  // namespace quillon
