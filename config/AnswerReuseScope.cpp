#include "AnswerReuse.h"

#include <utility>

AnswerReuse::AnswerReuse() : m_before(std::exchange(answerReuse.answers, &m_answers)) {}

AnswerReuse::~AnswerReuse()
{
    answerReuse.answers = m_before;
}
