// Every message of the parser at every place where it can arise, as tables by family of the
// grammar. A place is the text of a scene up to a token; put behind it are tokens of all kinds but
// those that the grammar takes there.
#pragma once

#include <string>
#include <vector>

#include "kelp/parser/messages.h"

namespace KelpTest {

/// The end of the input, where a spelling is asked for.
inline constexpr const char* kEndOfInput = "<end>";

/// Tokens that continue an expression, and those that begin one.
inline constexpr const char* kOperators = "+ - * /";
inline constexpr const char* kTermBegins = "5 \"s\" id ( + -";
inline constexpr const char* kAtomBegins = "5 \"s\" id (";

struct MessagePlace {
  enum class Kind {
    kFirst,         ///< `scene` and the token are all there is
    kScene,         ///< an object stands before `scene`
    kValue,         ///< `scene` begins inside a property's value
    kBehindOperand  ///< likewise, and an operand is put between it and the token
  };

  Kind kind;
  Kelp::Message message;
  std::string text;           ///< the whole message; % stands for the token's spelling
  std::string scene;          ///< up to the place
  std::string accepted = "";  ///< the tokens that may stand there, separated by blanks

  std::string word = "";     ///< what the message has inserted, if anything
  std::string only = "";     ///< the one token to try, instead of one of each kind
  std::string next = ";";    ///< the token behind it
  int maxNestingDepth = 50;  ///< how the parser is set
  int maxObjects = 0;        ///< likewise
};

using MessagePlaces = std::vector<MessagePlace>;

/// A form whose opening bracket the parser has seen before it enters the form.
struct BracketPlace {
  Kelp::Message message;
  std::string text;
  std::string form;
  std::string word = "";
};

const MessagePlaces& programPlaces();
const MessagePlaces& expressionPlaces();
const MessagePlaces& callPlaces();
const MessagePlaces& valuePlaces();
const MessagePlaces& listPlaces();
const MessagePlaces& nestingPlaces();
const std::vector<BracketPlace>& bracketPlaces();

/// Where an expression begins in a bracket inside a value.
struct ExpressionStart {
  std::string scene;           ///< the value up to there
  bool firstInBracket = true;  ///< whether no other expression stands before it in the bracket
  std::string accepted = "";   ///< what may stand there instead of an expression
};
const std::vector<ExpressionStart>& expressionStarts();

/// The builtin functions and how many arguments each takes.
struct BuiltinCall {
  const char* name;
  int numArgs;
};
const std::vector<BuiltinCall>& builtinCalls();

/// An operand and what may stand behind it besides an operator.
struct Operand {
  std::string text;
  std::string accepted;
};
const std::vector<Operand>& operands();

/// Tries all places with all their tokens: text, line and file of the reader, line and column of
/// the token, pools and recorded references as before.
void expectMessages(const MessagePlaces& places);

/// The same for a place whose opening bracket is lost on the way to the parser.
void expectMessage(const BracketPlace& place);

}  // namespace KelpTest
