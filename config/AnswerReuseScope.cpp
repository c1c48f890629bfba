#include "AnswerReuse.h"

#include <utility>

// Apart from AnswerReuse.cpp: a program that compares the run with and without reuse links its own two functions in the
// place of these.

AnswerReuse::AnswerReuse() : m_before(std::exchange(answersInUse.answers, &m_answers)) {}

AnswerReuse::~AnswerReuse()
{
    answersInUse.answers = m_before;
}
