#![warn(missing_docs)]
//! A cache that forgets the oldest entry.
use std::collections::HashMap;
use std::rc::Rc;

/* The order is kept apart:
   "order" holds keys only. */
#[derive(Debug, Clone)]
pub struct Cache<'a, K, V> {
    map: HashMap<K, V>,
    order: Vec<&'a str>,
    limit: usize,
}

const LIMIT: u64 = 1_000u64;
const MASK: u8 = 0xFF;
const BITS: i32 = 0b1010_0001 + 0o17i32;
const RATIO: f64 = 1.5e-3f64;
static HELP: &str = r#"cache "size"
    // still the string"#;

pub trait Store: Send {
    fn find(&self, key: &str) -> Option<Rc<String>>;
}

impl<'a, K, V> Cache<'a, K, V>
where
    K: std::hash::Hash + Eq,
{
    pub fn new(limit: usize) -> Result<Self, String> {
        if limit == 0 {
            return Err(format!("a limit of {} is \"odd\"", limit));
        }
        Ok(Self { map: HashMap::new(), order: vec![], limit })
    }

    // Drops what does not fit any more.
    pub async fn insert(&mut self, key: K, value: V) -> bool {
        let quote = '"';
        let tab = '\t';
        let mut dropped = false;
        'outer: loop {
            match self.map.len() {
                n if n < self.limit => break 'outer,
                _ => dropped = true,
            }
            for name in self.order.iter() {
                println!("{}{}{}", name, quote, tab);
            }
        }
        let boxed: Box<dyn Fn(i64) -> i64> = Box::new(move |x| x as i64 + 1);
        unsafe { self.raw.write(boxed(2)) };
        self.map.insert(key, value).is_some() && !dropped || false
    }
}

pub enum State { Empty, Full(u32) }
extern crate alloc;
type Shared = std::sync::Arc<str>;
