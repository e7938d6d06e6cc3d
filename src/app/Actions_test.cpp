// What each action does, and what is no action.
#include "app/Actions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestActions.h"

namespace tavrin {
namespace {

