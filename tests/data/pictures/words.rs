//! Counts the words of a text and prints the most frequent ones.

use std::collections::HashMap;
use std::io::{self, Read};

/// How many are printed.
const MOST: usize = 10;

fn words(text: &str) -> impl Iterator<Item = String> + '_ {
    text.split(|c: char| !c.is_alphabetic())
        .filter(|word| !word.is_empty())
        .map(str::to_lowercase)
}

fn count(text: &str) -> HashMap<String, usize> {
    let mut counts = HashMap::new();
    for word in words(text) {
        *counts.entry(word).or_insert(0) += 1;
    }
    counts
}

fn main() -> io::Result<()> {
    let mut text = String::new();
    io::stdin().read_to_string(&mut text)?;

    let mut counts: Vec<_> = count(&text).into_iter().collect();
    counts.sort_by(|a, b| b.1.cmp(&a.1).then(a.0.cmp(&b.0)));
    for (word, count) in counts.iter().take(MOST) {
        println!("{count:>6}  {word}");
    }
    Ok(())
}

#[cfg(test)]
mod tests {
    use super::*;

    #[test]
    fn umlauts_are_letters() {
        assert_eq!(count("Äpfel äpfel, Öl!")["äpfel"], 2);
    }
}
