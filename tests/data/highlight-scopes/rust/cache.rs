: #![warn(missing_docs)]
= aaaaaaaaaaaaaaaaaaaaaa
: //! A cache that forgets the oldest entry.
= cccccccccccccccccccccccccccccccccccccccccc
: use std::collections::HashMap;
= kkk                   ttttttt
: use std::rc::Rc;
= kkk          tt
:
: /* The order is kept apart:
= cccccccccccccccccccccccccccc
:    "order" holds keys only. */
= cccccccccccccccccccccccccccccc
: #[derive(Debug, Clone)]
= aaaaaaaaaaaaaaaaaaaaaaa
: pub struct Cache<'a, K, V> {
= kkk kkkkkk ttttt vv  t  t
:     map: HashMap<K, V>,
=          ttttttt t  t
:     order: Vec<&'a str>,
=            ttt  vv ttt
:     limit: usize,
=            ttttt
: }
:
: const LIMIT: u64 = 1_000u64;
= kkkkk ttttt  ttt   nnnnnnnn
: const MASK: u8 = 0xFF;
= kkkkk tttt  tt   nnnn
: const BITS: i32 = 0b1010_0001 + 0o17i32;
= kkkkk tttt  ttt   nnnnnnnnnnn   nnnnnnn
: const RATIO: f64 = 1.5e-3f64;
= kkkkk ttttt  ttt   nnnnnnnnn
: static HELP: &str = r#"cache "size"
= kkkkkk tttt   ttt   ssssssssssssssss
:     // still the string"#;
= sssssssssssssssssssssssss
:
: pub trait Store: Send {
= kkk kkkkk ttttt  tttt
:     fn find(&self, key: &str) -> Option<Rc<String>>;
=     kk ffff  bbbb        ttt     tttttt tt tttttt
: }
:
: impl<'a, K, V> Cache<'a, K, V>
= kkkk vv  t  t  ttttt vv  t  t
: where
= kkkkk
:     K: std::hash::Hash + Eq,
=     t             tttt   tt
: {
:     pub fn new(limit: usize) -> Result<Self, String> {
=     kkk kk fff        ttttt     tttttt bbbb  tttttt
:         if limit == 0 {
=         kk          n
:             return Err(format!("a limit of {} is \"odd\"", limit));
=             kkkkkk bbb ffffff  ssssssssssssssssssssssssss
:         }
:         Ok(Self { map: HashMap::new(), order: vec![], limit })
=         bb bbbb        ttttttt  fff           fff
:     }
:
:     // Drops what does not fit any more.
=     cccccccccccccccccccccccccccccccccccc
:     pub async fn insert(&mut self, key: K, value: V) -> bool {
=     kkk kkkkk kk ffffff  kkk bbbb       t         t     tttt
:         let quote = '"';
=         kkk         sss
:         let tab = '\t';
=         kkk       ssss
:         let mut dropped = false;
=         kkk kkk           bbbbb
:         'outer: loop {
=         vvvvvv  kkkk
:             match self.map.len() {
=             kkkkk bbbb     fff
:                 n if n < self.limit => break 'outer,
=                   kk     bbbb          kkkkk vvvvvv
:                 _ => dropped = true,
=                                bbbb
:             }
:             for name in self.order.iter() {
=             kkk      kk bbbb       ffff
:                 println!("{}{}{}", name, quote, tab);
=                 fffffff  ssssssss
:             }
:         }
:         let boxed: Box<dyn Fn(i64) -> i64> = Box::new(move |x| x as i64 + 1);
=         kkk        ttt kkk tt ttt     ttt    ttt  fff kkkk       kk ttt   n
:         unsafe { self.raw.write(boxed(2)) };
=         kkkkkk   bbbb     fffff fffff n
:         self.map.insert(key, value).is_some() && !dropped || false
=         bbbb     ffffff             fffffff                  bbbbb
:     }
: }
:
: pub enum State { Empty, Full(u32) }
= kkk kkkk ttttt   ttttt  tttt ttt
: extern crate alloc;
= kkkkkk kkkkk
: type Shared = std::sync::Arc<str>;
= kkkk tttttt              ttt ttt
:
