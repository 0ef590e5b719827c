// The Objective-C headers at hand ask for it; nothing of ours needs what it declares.
#pragma once
